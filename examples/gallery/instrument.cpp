#include "instrument.h"

#include <values/values.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace {

struct ValueRecipe
{
    const char* path;
    std::function<values::ValueBase*()> make;
};

// The item names of the gallery's values are translated, where the controls show them, in the
// namespace of the gallery's own catalog; the values keep their English names.
const char* const kNamespace = "Gallery";

values::ValueSelection* makeSelection(std::initializer_list<const char*> names)
{
    auto* selection = new values::ValueSelection;
    selection->SetTranslationNamespace(kNamespace);
    long key = 0;
    for (const char* name : names) {
        selection->AddItem(QString::fromLatin1(name), double(key), key, nullptr);
        ++key;
    }
    return selection;
}

// The filters of the receiver, in kHz; the item numbers are the widths, so a width can be selected by number.
const double kBandwidthsKHz[] = {0.5, 1.8, 2.4, 3.0, 6.0, 9.0, 15.0};
constexpr long kDefaultBandwidthKey = 4; // 6 kHz, the filter of AM, the mode the receiver starts in

values::ValueSelection* makeBandwidths()
{
    auto* selection = new values::ValueSelection;
    long key = 0;
    for (double kHz : kBandwidthsKHz) {
        selection->AddItem(QStringLiteral("%1 kHz").arg(kHz, 0, 'f', 1), kHz, key, nullptr);
        ++key;
    }
    selection->SelectKey(kDefaultBandwidthKey, nullptr);
    return selection;
}

// The moment the instrument was switched on, in whole seconds: the start of its acquisition.
qint64 switchedOnUs()
{
    static const qint64 us = QDateTime::currentSecsSinceEpoch() * 1000000;
    return us;
}

values::ValueBase* makeText(const char* text)
{
    return new values::StringValue(QString::fromLatin1(text));
}

// The band monitor's channels: the 5 kHz broadcast grid of the 49 m and 41 m bands.
constexpr int kChannels = 300;
constexpr double kFirstChannelKHz = 5900.0;
constexpr double kChannelStepKHz = 5.0;
// Channels the monitor looks at per step: it passes the whole grid every 50 steps (2.5 s).
constexpr int kChannelsPerStep = 6;

values::ValueBase* makeChannels()
{
    auto* channels = new values::StringMultiSelection(0);
    channels->SetTranslationNamespace(kNamespace);
    for (int i = 0; i < kChannels; ++i)
        channels->AddItem(unsigned(i), QStringLiteral("%1 kHz").arg(kFirstChannelKHz + i * kChannelStepKHz, 0, 'f', 0));
    channels->SetNoneEntry(true, QStringLiteral(QT_TRANSLATE_NOOP("Gallery", "none")));
    channels->SetSeveralEntryText(QStringLiteral(QT_TRANSLATE_NOOP("Gallery", "several")));
    return channels;
}

const std::vector<ValueRecipe>& recipes()
{
    // Kept in path order, so that paths() needs no sorting. A result is a branch of a name, a number,
    // its unit and a flag that marks the number invalid.
    static const std::vector<ValueRecipe> list = {
        {"/receiver/acquisition/length", [] { return new values::Int64Value(0); }},
        {"/receiver/acquisition/start", [] { return new values::Int64Value(switchedOnUs()); }},
        {"/receiver/agc", [] { return makeSelection({QT_TRANSLATE_NOOP("Gallery", "Slow"), QT_TRANSLATE_NOOP("Gallery", "Fast")}); }},
        {"/receiver/alarms/overload", [] { return new values::BoolValue(false); }},
        {"/receiver/alarms/record", [] { return new values::BoolValue(false); }},
        {"/receiver/alarms/status", [] { return new values::IntValue(0); }},
        {"/receiver/attenuator", [] { return new values::BoolValue(false); }},
        {"/receiver/bandwidth", makeBandwidths},
        {"/receiver/carrier", [] { return new values::BoolValue(false); }},
        {"/receiver/channels", makeChannels},
        {"/receiver/frequency", [] { return new values::DoubleNumeric(7000.0, 100.0, 30000.0, 1.0); }},
        {"/receiver/gain", [] { return new values::IntNumeric(30, 0, 60, 1); }},
        {"/receiver/level", [] { return new values::DoubleNumeric(-121.0, -130.0, 0.0, 1.0); }},
        {"/receiver/mode", [] { return makeSelection({"AM", "FM", "USB", "LSB", "CW"}); }},
        {"/receiver/notes", [] { return new values::StringValue(QStringLiteral("40 m band watch")); }},
        {"/receiver/options",
         [] {
             auto* options = new values::StringMultiSelection(0);
             options->SetTranslationNamespace(kNamespace);
             options->AddItem(1, QStringLiteral(QT_TRANSLATE_NOOP("Gallery", "Noise blanker")));
             options->AddItem(2, QStringLiteral(QT_TRANSLATE_NOOP("Gallery", "Notch")));
             options->AddItem(3, QStringLiteral(QT_TRANSLATE_NOOP("Gallery", "Preamp")));
             options->SetNoneEntry(true, QStringLiteral(QT_TRANSLATE_NOOP("Gallery", "none")));
             options->SetSeveralEntryText(QStringLiteral(QT_TRANSLATE_NOOP("Gallery", "several")));
             return options;
         }},
        {"/receiver/results/bandwidth/INVALID", [] { return new values::BoolValue(false); }},
        {"/receiver/results/bandwidth/NAME", [] { return makeText("Bandwidth"); }},
        {"/receiver/results/bandwidth/UNIT", [] { return makeText("kHz"); }},
        {"/receiver/results/bandwidth/VALUE", [] { return new values::DoubleNumeric(6.0, 0.0, 100.0); }},
        {"/receiver/results/fieldstrength/INVALID", [] { return new values::BoolValue(true); }},
        {"/receiver/results/fieldstrength/NAME", [] { return makeText("Field Strength"); }},
        {"/receiver/results/fieldstrength/UNIT", [] { return makeText("dBuV/m"); }},
        {"/receiver/results/fieldstrength/VALUE", [] { return new values::DoubleNumeric(0.0, -50.0, 150.0); }},
        {"/receiver/results/level/INVALID", [] { return new values::BoolValue(false); }},
        {"/receiver/results/level/NAME", [] { return makeText("Level"); }},
        {"/receiver/results/level/UNIT", [] { return makeText("dBm"); }},
        {"/receiver/results/level/VALUE", [] { return new values::DoubleNumeric(-121.0, -130.0, 0.0); }},
        {"/receiver/results/offset/INVALID", [] { return new values::BoolValue(true); }},
        {"/receiver/results/offset/NAME", [] { return makeText("Offset"); }},
        {"/receiver/results/offset/UNIT", [] { return makeText("kHz"); }},
        {"/receiver/results/offset/VALUE", [] { return new values::DoubleNumeric(0.0, -100.0, 100.0); }},
        {"/receiver/scan/active", [] { return new values::BoolValue(true); }},
        {"/receiver/scan/found", [] { return new values::DoubleNumeric(0.0, 0.0, 30000.0); }},
        {"/receiver/scan/from", [] { return new values::DoubleNumeric(7000.0, 100.0, 30000.0, 1.0); }},
        {"/receiver/scan/hold", [] { return new values::IntNumeric(2, 0, 10, 1); }},
        {"/receiver/scan/position", [] { return new values::IntNumeric(0, 0, 100, 1); }},
        {"/receiver/scan/speed", [] { return new values::IntNumeric(2, 1, 10, 1); }},
        {"/receiver/scan/to", [] { return new values::DoubleNumeric(7300.0, 100.0, 30000.0, 1.0); }},
        // The receiving site and a reference transmitter, in degrees (WGS 84).
        {"/receiver/site/latitude", [] { return new values::DoubleNumeric(59.8586, -90.0, 90.0); }},
        {"/receiver/site/longitude", [] { return new values::DoubleNumeric(17.6389, -180.0, 180.0); }},
        {"/receiver/squelch", [] { return new values::IntNumeric(-95, -130, -30, 1); }},
        {"/receiver/transmitter/latitude", [] { return new values::DoubleNumeric(57.1089, -90.0, 90.0); }},
        {"/receiver/transmitter/longitude", [] { return new values::DoubleNumeric(12.3961, -180.0, 180.0); }},
        // How the level is viewed: switches of the menu bar (in/out names "On" and "Off"), the markers
        // of the display (keys counting from 0, as a generated menu addresses them), and the unit and
        // range of the level readout's context menu.
        {"/receiver/view/averaging", [] { return makeSelection({QT_TRANSLATE_NOOP("Gallery", "Off"), QT_TRANSLATE_NOOP("Gallery", "On")}); }},
        {"/receiver/view/hold", [] { return makeSelection({QT_TRANSLATE_NOOP("Gallery", "Off"), QT_TRANSLATE_NOOP("Gallery", "On")}); }},
        {"/receiver/view/markers",
         [] {
             auto* markers = new values::StringMultiSelection(0);
             markers->SetTranslationNamespace(kNamespace);
             const char* const names[] = {QT_TRANSLATE_NOOP("Gallery", "Carrier"), QT_TRANSLATE_NOOP("Gallery", "Overload"),
                                          QT_TRANSLATE_NOOP("Gallery", "Scan stops"), QT_TRANSLATE_NOOP("Gallery", "Squelch")};
             for (unsigned key = 0; key < 4; ++key)
                 markers->AddItem(key, QString::fromLatin1(names[key]), key == 0);
             return markers;
         }},
        {"/receiver/view/range", [] { return makeSelection({QT_TRANSLATE_NOOP("Gallery", "Full"), QT_TRANSLATE_NOOP("Gallery", "Weak signals"), QT_TRANSLATE_NOOP("Gallery", "Strong signals")}); }},
        {"/receiver/view/unit", [] { return makeSelection({"dBm", "dBuV"}); }},
        {"/receiver/volume", [] { return new values::IntNumeric(40, 0, 100, 1); }},
        // The compounds of the buttons page: the band with its preselector switch, and the tuning step.
        {"/receiver/band", [] { return makeSelection({QT_TRANSLATE_NOOP("Gallery", "LW"), QT_TRANSLATE_NOOP("Gallery", "MW"), QT_TRANSLATE_NOOP("Gallery", "SW"), QT_TRANSLATE_NOOP("Gallery", "VHF")}); }},
        {"/receiver/preselector", [] { return new values::BoolValue(true); }},
        {"/receiver/step", [] { return makeSelection({"10 Hz", "100 Hz", "1 kHz", "10 kHz", "100 kHz"}); }},
    };
    return list;
}

struct Station
{
    double kHz;
    double dBm;      // mean level at the antenna
    double fadeDb;   // depth of the slow fading
    double periodS;  // period of the fading
};

// The stations of the default scan band; the scan reaches them at 3 kHz per position.
const Station kStations[] = {
    {7030.0, -62.0, 4.0, 3.1},
    {7075.0, -55.0, 6.0, 5.3},
    {7120.0, -80.0, 3.0, 2.2},
    {7195.0, -47.0, 8.0, 7.7},
    {7255.0, -71.0, 5.0, 4.1},
};

// Antenna factor of the simulated whip, and the level above which the front end overloads.
constexpr double kAntennaFactorDb = 20.0;
constexpr double kOverloadDbm = -50.0;

template <class T>
T* find(const char* path)
{
    return dynamic_cast<T*>(values::Tree::Instance()->Find(QString::fromLatin1(path)));
}

double bandwidthKHz(values::ValueSelection* bandwidth)
{
    const values::SelectionItem* item = bandwidth ? bandwidth->GetCurrentItem() : nullptr;
    return item ? item->GetValue() : kBandwidthsKHz[kDefaultBandwidthKey];
}

bool optionChecked(values::StringMultiSelection* options, int key)
{
    return options && options->IsItemChecked(key);
}

} // namespace

long Instrument::bandwidthKeyOfMode(long modeKey)
{
    // AM 6 kHz, FM 15 kHz, USB and LSB 2.4 kHz, CW 0.5 kHz.
    static const long keys[] = {4, 6, 2, 2, 0};
    return modeKey >= 0 && modeKey < 5 ? keys[modeKey] : kDefaultBandwidthKey;
}

Instrument::Instrument(QObject* parent)
    : QObject(parent)
{
    m_timer.setTimerType(Qt::CoarseTimer);
    m_timer.setInterval(StepMs);
    connect(&m_timer, &QTimer::timeout, this, &Instrument::step);
    for (const ValueRecipe& recipe : recipes()) {
        values::ValueBase* value = recipe.make();
        if (!values::Tree::Instance()->Add(QString::fromLatin1(recipe.path), value))
            delete value; // the path is taken: another instrument owns it
    }
    setSeed(QRandomGenerator::global()->generate());
}

Instrument::~Instrument()
{
    m_timer.stop();
    for (const ValueRecipe& recipe : recipes())
        values::Tree::Instance()->Remove(QString::fromLatin1(recipe.path));
}

QStringList Instrument::paths()
{
    QStringList list;
    for (const ValueRecipe& recipe : recipes())
        list << QString::fromLatin1(recipe.path);
    list.sort(); // in the tree's order, whatever the order of the recipes
    return list;
}

void Instrument::setSeed(quint32 seed)
{
    m_nSeed = seed;
    m_rng.seed(seed);
    m_nSteps = 0;
    m_nHoldSteps = 0;
    m_bSkipping = false;
    m_bFoundNoted = false;
    rememberDial();
}

void Instrument::start()
{
    m_timer.start();
}

void Instrument::stop()
{
    m_timer.stop();
}

void Instrument::rememberDial()
{
    auto* position = find<values::IntNumeric>("/receiver/scan/position");
    auto* frequency = find<values::DoubleNumeric>("/receiver/frequency");
    auto* mode = find<values::ValueSelection>("/receiver/mode");
    m_fLastPosition = position ? position->GetValue() : -1;
    m_fLastFrequency = frequency ? frequency->GetValue() : -1;
    m_nLastMode = mode ? mode->GetCurrentKey() : -1;
}

double Instrument::gaussian()
{
    // Box-Muller; drawing exactly two numbers per call keeps a seeded run reproducible.
    const double u1 = 1.0 - m_rng.generateDouble();
    const double u2 = m_rng.generateDouble();
    return std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * M_PI * u2);
}

double Instrument::signalLevel(double frequencyKHz, double t)
{
    const double bandwidth = bandwidthKHz(find<values::ValueSelection>("/receiver/bandwidth"));

    const double noise = -121.0 + 1.5 * gaussian();
    double power = std::pow(10.0, noise / 10.0);
    for (const Station& station : kStations) {
        const double offset = std::abs(frequencyKHz - station.kHz);
        if (offset >= bandwidth)
            continue;
        // Off-tune the station falls off steeply; the fading gives the meter something to do.
        const double fading = station.fadeDb * std::sin(2.0 * M_PI * t / station.periodS + station.kHz);
        const double dBm = station.dBm + fading - 30.0 * (offset / bandwidth);
        power += std::pow(10.0, dBm / 10.0);
    }
    double level = 10.0 * std::log10(power);

    auto* options = find<values::StringMultiSelection>("/receiver/options");
    if (optionChecked(options, 3))
        level += 10.0;
    if (optionChecked(options, 1))
        level -= 2.0; // the blanker takes the noise peaks off, and a little of everything else
    auto* attenuator = find<values::BoolValue>("/receiver/attenuator");
    if (attenuator && attenuator->GetValue())
        level -= 20.0;
    // Whole dB: the meter's resolution, and what an integer slider shows without rewriting the value.
    return qBound(-130.0, double(qRound(level)), 0.0);
}

void Instrument::step()
{
    ++m_nSteps;
    const double t = simulatedMs() / 1000.0;

    auto* active = find<values::BoolValue>("/receiver/scan/active");
    auto* position = find<values::IntNumeric>("/receiver/scan/position");
    auto* frequency = find<values::DoubleNumeric>("/receiver/frequency");
    auto* from = find<values::DoubleNumeric>("/receiver/scan/from");
    auto* to = find<values::DoubleNumeric>("/receiver/scan/to");
    const double bandFrom = from ? from->GetValue() : 7000.0;
    const double bandTo = to ? to->GetValue() : 7300.0;
    const double span = bandTo - bandFrom;

    // The user turned the dial since the last step: follow it, and stop scanning as a receiver does.
    const bool positionTurned = position && position->GetValue() != m_fLastPosition;
    const bool frequencyTurned = !positionTurned && frequency && frequency->GetValue() != m_fLastFrequency;
    if ((positionTurned || frequencyTurned) && active && active->GetValue())
        active->SetValue(false, nullptr);
    if (positionTurned && frequency)
        frequency->SetValue(qRound(bandFrom + span * position->GetValue() / 100.0), nullptr);
    if (frequencyTurned && position && span > 0) {
        const double f = frequency->GetValue();
        if (f >= bandFrom && f <= bandTo)
            position->SetValue(qRound((f - bandFrom) / span * 100.0), nullptr);
    }

    // A new mode brings its filter, as on a real set; the user may pick another one afterwards.
    auto* mode = find<values::ValueSelection>("/receiver/mode");
    if (mode && mode->GetCurrentKey() != m_nLastMode && mode->GetCurrentKey() >= 0) {
        if (auto* bandwidth = find<values::ValueSelection>("/receiver/bandwidth"))
            bandwidth->SelectKey(bandwidthKeyOfMode(mode->GetCurrentKey()), nullptr);
    }

    const bool scanning = active && active->GetValue() && position;
    if (!scanning) {
        m_nHoldSteps = 0;
    } else if (m_nHoldSteps > 0) {
        --m_nHoldSteps;
        if (m_nHoldSteps == 0)
            m_bSkipping = true;
    } else {
        auto* speed = find<values::IntNumeric>("/receiver/scan/speed");
        int next = int(position->GetValue()) + (speed ? int(speed->GetValue()) : 1);
        if (next > 100)
            next = 0;
        position->SetValue(next, nullptr);
        if (frequency)
            frequency->SetValue(qRound(bandFrom + span * next / 100.0), nullptr);
    }

    const double tuned = frequency ? frequency->GetValue() : bandFrom;
    const double level = signalLevel(tuned, t);
    if (auto* meter = find<values::DoubleNumeric>("/receiver/level"))
        meter->SetValue(level, nullptr);

    auto* squelch = find<values::IntNumeric>("/receiver/squelch");
    const bool carrier = level >= (squelch ? squelch->GetValue() : -95.0);
    if (auto* carrierValue = find<values::BoolValue>("/receiver/carrier")) {
        if (carrierValue->GetValue() != carrier)
            carrierValue->SetValue(carrier, nullptr);
    }
    if (!carrier) {
        m_bSkipping = false;
    } else if (scanning && m_nHoldSteps == 0 && !m_bSkipping) {
        auto* hold = find<values::IntNumeric>("/receiver/scan/hold");
        m_nHoldSteps = (hold ? int(hold->GetValue()) : 2) * 1000 / StepMs;
        m_bSkipping = m_nHoldSteps == 0;
    }

    updateResults(tuned, level, carrier, scanning);
    monitorChannels(t);
    rememberDial();
    Q_EMIT stepped(m_nSteps);
}

void Instrument::updateResults(double tunedKHz, double level, bool carrier, bool scanning)
{
    // Each value is written only when it changes, as a real instrument's driver would.
    auto setNumber = [](const char* path, double x) {
        auto* value = find<values::DoubleNumeric>(path);
        if (value && value->GetValue() != x)
            value->SetValue(x, nullptr);
    };
    auto setBool = [](const char* path, bool b) {
        auto* value = find<values::BoolValue>(path);
        if (value && value->GetValue() != b)
            value->SetValue(b, nullptr);
    };
    setNumber("/receiver/results/level/VALUE", level);
    setNumber("/receiver/results/bandwidth/VALUE", bandwidthKHz(find<values::ValueSelection>("/receiver/bandwidth")));
    // A field strength and an offset need a carrier to measure.
    setBool("/receiver/results/fieldstrength/INVALID", !carrier);
    setBool("/receiver/results/offset/INVALID", !carrier);
    if (carrier) {
        setNumber("/receiver/results/fieldstrength/VALUE", level + 107.0 + kAntennaFactorDb);
        double nearest = kStations[0].kHz;
        for (const Station& station : kStations)
            if (std::abs(tunedKHz - station.kHz) < std::abs(tunedKHz - nearest))
                nearest = station.kHz;
        setNumber("/receiver/results/offset/VALUE", qBound(-100.0, tunedKHz - nearest, 100.0));
    }
    // The scan stopping on a carrier: a new entry in the list of stations found.
    if (scanning && carrier && m_nHoldSteps > 0 && !m_bFoundNoted) {
        setNumber("/receiver/scan/found", tunedKHz);
        m_bFoundNoted = true;
    } else if (!carrier) {
        m_bFoundNoted = false;
    }

    const bool overload = level > kOverloadDbm;
    setBool("/receiver/alarms/overload", overload);
    // The status lamp: red on overload, green on a carrier, orange while scanning, gray when idle.
    const int status = overload ? 1 : carrier ? 3 : scanning ? 2 : 0;
    if (auto* lamp = find<values::IntValue>("/receiver/alarms/status"); lamp && lamp->GetValue() != status)
        lamp->SetValue(status, nullptr);
    // The acquisition runs in simulated time, shown in whole seconds.
    const qint64 lengthUs = simulatedMs() / 1000 * 1000000;
    if (auto* length = find<values::Int64Value>("/receiver/acquisition/length"); length && length->GetValue() != lengthUs)
        length->SetValue(lengthUs, nullptr);
}

void Instrument::monitorChannels(double t)
{
    // A channel is marked while the monitor hears a carrier on it. Each channel's propagation rises and
    // falls on a slow period of its own; the monitor visits a few channels per step and flips the marks
    // that changed, one write each, as a driver reporting its findings would. A mark the user set stays
    // until the monitor comes by.
    auto* channels = find<values::StringMultiSelection>("/receiver/channels");
    if (!channels)
        return;
    for (int n = 0; n < kChannelsPerStep; ++n) {
        const int channel = int((m_nSteps * kChannelsPerStep + quint64(n)) % kChannels);
        const double period = 7.0 + (channel * 7919 % 23);
        // The flutter comes from the channel and the step, not from the noise generator, so that the
        // rest of a seeded run stays as it was.
        const double flutter = 0.3 * std::sin(channel * 12.9898 + double(m_nSteps) * 78.233);
        const double strength = std::sin(2.0 * M_PI * t / period + channel * 0.37) + flutter;
        const bool heard = strength > 0.6;
        if (channels->IsItemChecked(channel) != heard)
            channels->SetItemChecked(channel, heard, nullptr);
    }
}

bool Instrument::restoreValue(const QString& path)
{
    const std::vector<ValueRecipe>& list = recipes();
    const auto recipe = std::find_if(list.begin(), list.end(),
                                     [&path](const ValueRecipe& r) { return path == QLatin1String(r.path); });
    if (recipe == list.end())
        return false;
    values::Tree* tree = values::Tree::Instance();
    if (values::ValueBase* value = tree->Find(path)) {
        value->SetState(Enabled, nullptr);
        return true;
    }
    values::ValueBase* value = recipe->make();
    if (!tree->Add(path, value)) {
        delete value;
        return false;
    }
    rememberDial();
    Q_EMIT restored(1);
    return true;
}

int Instrument::restore()
{
    int recreated = 0;
    values::Tree* tree = values::Tree::Instance();
    for (const ValueRecipe& recipe : recipes()) {
        const QString path = QString::fromLatin1(recipe.path);
        if (values::ValueBase* value = tree->Find(path)) {
            value->SetState(Enabled, nullptr);
            continue;
        }
        values::ValueBase* value = recipe.make();
        if (tree->Add(path, value))
            ++recreated;
        else
            delete value;
    }
    // A re-created position, frequency or mode is not the user turning the dial.
    rememberDial();
    Q_EMIT restored(recreated);
    return recreated;
}
