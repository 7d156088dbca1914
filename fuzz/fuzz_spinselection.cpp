// VCSpinSelectionBox reading its text as a number with a magnitude letter ("100 k", "2.5 M"), in
// each order of magnitude of the item numbers. An unreadable text leaves the selection alone; a
// readable one selects the item nearest to the number, which for the plain "number, letter" form is
// checked against SuffixedDouble's reading of the same text. After the box takes the text as a
// user's, its index and its text are the selection's.
//
// Input: byte 0 the order of magnitude (blank, G, M, k, m), then the text.

#include "fuzzcheck.h"

#include <plinthor/suffixeddouble.h>
#include <values/values.h>
#include <vandrel/vcspinselectionbox.h>

#include <QLineEdit>
#include <QRegularExpression>

#include <cmath>
#include <iterator>
#include <limits>

namespace {

const QString kPath = QStringLiteral("/fuzz/selection");
const double kItems[] = {-3.0, 0.001, 0.5, 100.0, 2500.0, 1e6, 3e9};
const int kStart = 3;

struct Magnitude {
    wchar_t letter;
    int power; // of 1000
};
const Magnitude kMagnitudes[] = {{L' ', 0}, {L'G', 3}, {L'M', 2}, {L'k', 1}, {L'm', -1}};

class Box : public VCSpinSelectionBox
{
public:
    using QAbstractSpinBox::lineEdit;
    using VCSpinSelectionBox::mapTextToValue;
};

values::ValueSelection* selection()
{
    return static_cast<values::ValueSelection*>(values::Tree::Instance()->Find(kPath));
}

Box* box()
{
    static Box* instance = nullptr;
    if (!instance) {
        instance = new Box;
        // The text is read when asked, not on each change of it.
        instance->setKeyboardTracking(false);
        instance->SetValueSelection_ValuePath(kPath);
    }
    return instance;
}

int nearestIndex(double number)
{
    int best = 0;
    for (int i = 1; i < int(std::size(kItems)); ++i) {
        if (std::fabs(kItems[i] - number) < std::fabs(kItems[best] - number))
            best = i;
    }
    return best;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::makeApplication(argc, argv);
    auto* items = new values::ValueSelection;
    for (int i = 0; i < int(std::size(kItems)); ++i)
        items->AddItem(QStringLiteral("item %1").arg(i), kItems[i], 10 + i, nullptr);
    values::Tree::Instance()->Add(kPath, items);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const Magnitude& magnitude = kMagnitudes[fuzz::choice(data[0], 5)];
    const QString input = fuzz::text(data + 1, size - 1);
    values::ValueSelection* items = selection();
    items->SelectIndex(kStart, nullptr);
    Box* spin = box();
    spin->setOrderOfMagnitudeVSValues(magnitude.letter);
    spin->lineEdit()->setText(input);
    const QString context = QStringLiteral("magnitude '%1', text '%2'").arg(QChar(magnitude.letter)).arg(spin->text());

    bool ok = true;
    const int index = spin->mapTextToValue(&ok);
    const int chosen = int(items->GetCurrentIndex());
    if (!ok) {
        FUZZ_CHECK(index == 0 && chosen == kStart, context);
    } else {
        FUZZ_CHECK(index == chosen && index >= 0 && index < int(std::size(kItems)), context);
        static const QRegularExpression plainForm(QStringLiteral("^-?\\d+(\\.\\d+)? *[kMGm]?$"));
        SuffixedDouble reader(QString(), 1000, true);
        if (plainForm.match(spin->text().trimmed()).hasMatch() && reader.SetFrequencyString(spin->text())) {
            const double number = reader.GetValue() * std::pow(1000.0, -magnitude.power);
            const int nearest = nearestIndex(number);
            // Ties and last-bit differences between two ways of scaling may pick either neighbour.
            const double slack = std::fabs(number) * 1e-12 + std::numeric_limits<double>::denorm_min();
            FUZZ_CHECK(std::fabs(kItems[chosen] - number) <= std::fabs(kItems[nearest] - number) + slack,
                       context + QStringLiteral(": number %1, chose %2, nearest %3")
                                     .arg(number, 0, 'g', 17)
                                     .arg(chosen)
                                     .arg(nearest));
        }
    }

    // Taken as a user's text, whatever it was, the box ends on an item and shows its name.
    spin->lineEdit()->setText(input);
    spin->interpretText();
    const QString taken = context + QStringLiteral(", taken: box %1 '%2', selection %3 '%4'")
                                        .arg(spin->value())
                                        .arg(spin->text())
                                        .arg(items->GetCurrentIndex())
                                        .arg(items->GetValueString());
    FUZZ_CHECK(spin->value() == items->GetCurrentIndex(), taken);
    FUZZ_CHECK(spin->text() == items->GetValueString(), taken);
    return 0;
}
