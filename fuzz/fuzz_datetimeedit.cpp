// VCDateTimeEdit taking text typed into its days box or its time edit, in a span (differential) or a
// moment (absolute) control, in languages with other digits and separators. Every write is in whole
// seconds. When the box that got the text holds an acceptable text, the value is what the control
// shows: a span is the box's days (0 for fewer than none) plus the edit's time of day; a moment is the
// edit's moment, also past 2106 where the stamp no longer fits 32 bits of seconds.
//
// Input: byte 0 the language (C, German, Arabic, Persian, Bengali), byte 1 the field (days of a span,
// time of a span, days of a moment, time of a moment), then the text.

#include "fuzzcheck.h"

#include <values/values.h>
#include <vandrel/vcdatetimeedit.h>

#include <QDateTimeEdit>
#include <QLineEdit>
#include <QLocale>
#include <QSpinBox>

#include <ctime>
#include <vector>

namespace {

constexpr long long kSecond = 1000000;
const long long kStart = ((3 * 24 + 4) * 60 * 60 + 5 * 60 + 6) * kSecond; // 3 days 04:05:06
const char* const kLocales[] = {"C", "de_DE", "ar_EG", "fa_IR", "bn_BD"};

struct Writes : IObserver
{
    void Update(Observable* source, TChangeCode code) override
    {
        if (code == ValueChanged)
            stamps.push_back(dynamic_cast<values::Int64Value*>(source)->GetValue());
    }
    std::vector<long long> stamps;
};

struct Subject
{
    values::Int64Value* value = nullptr;
    VCDateTimeEdit* edit = nullptr;
};

Subject subjects[2]; // a span, a moment
Writes writes;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    // Local time is UTC, so that a moment's stamp is its seconds since 1970 also on the first day.
    qputenv("TZ", "UTC");
    tzset();
    fuzz::makeApplication(argc, argv);
    for (int i = 0; i < 2; ++i) {
        const QString path = QStringLiteral("/fuzz/stamp%1").arg(i);
        subjects[i].value = new values::Int64Value(kStart);
        values::Tree::Instance()->Add(path, subjects[i].value);
        subjects[i].value->Attach(&writes);
        subjects[i].edit = new VCDateTimeEdit(nullptr, "fuzz");
        subjects[i].edit->SetDifferential(i == 0);
        subjects[i].edit->SetDateTime_ValuePath(path);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const QLocale locale(QString::fromLatin1(kLocales[fuzz::choice(data[0], 5)]));
    const int field = fuzz::choice(data[1], 4);
    const QString input = fuzz::text(data + 2, size - 2);
    const bool span = field < 2;
    const Subject& s = subjects[span ? 0 : 1];
    QSpinBox* days = s.edit->GetDaysEdit();
    QDateTimeEdit* time = s.edit->GetTimeEdit();
    days->setLocale(locale);
    time->setLocale(locale);
    s.value->SetValue(kStart, nullptr);
    writes.stamps.clear();

    QAbstractSpinBox* box = field % 2 ? static_cast<QAbstractSpinBox*>(time) : days;
    box->findChild<QLineEdit*>()->setText(input);
    box->interpretText();
    const QString context = QStringLiteral("locale %1, %2 %3, text '%4', box shows '%5' (%6), edit '%7'")
                                .arg(locale.name(), QLatin1String(span ? "span" : "moment"),
                                     QLatin1String(field % 2 ? "time" : "days"), input, days->text())
                                .arg(days->value())
                                .arg(time->dateTime().toString(Qt::ISODate));
    for (long long stamp : writes.stamps)
        FUZZ_CHECK(stamp % kSecond == 0, context + QStringLiteral(": wrote %1").arg(stamp));

    // A span's time edit writes the days the box shows: a change of the time makes it write now.
    if (span && days->hasAcceptableInput()) {
        const QTime other = time->time() == QTime(1, 2, 3) ? QTime(3, 2, 1) : QTime(1, 2, 3);
        time->setTime(other);
        const long long expected =
            days->value() < 0 ? 0 : (days->value() * 86400LL + QTime(0, 0).secsTo(time->time())) * kSecond;
        FUZZ_CHECK(s.value->GetValue() == expected,
                   context + QStringLiteral(": holds %1, expected %2").arg(s.value->GetValue()).arg(expected));
    }
    if (!span && field % 2 && time->hasAcceptableInput() && !writes.stamps.empty()) {
        const long long expected = time->dateTime().toSecsSinceEpoch() * kSecond;
        FUZZ_CHECK(s.value->GetValue() == expected,
                   context + QStringLiteral(": holds %1, expected %2").arg(s.value->GetValue()).arg(expected));
    }
    return 0;
}
