#pragma once

#include <QObject>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>
#include <QTimer>

namespace values {
class ValueBase;
}

/**
 * \brief A simulated shortwave receiver that lives in the value tree under /receiver.
 *
 * The instrument creates its values when it is made and removes them when it goes; one instrument per
 * process. A coarse timer advances the simulation in fixed steps of StepMs: the signal level follows the
 * stations near the tuned frequency, and while scanning the scan position (and with it the frequency)
 * moves until a carrier opens the squelch. The instrument writes with a null originator, so every bound
 * control hears of its writes.
 *
 * The simulation depends only on the seed and the number of steps, so a fixed seed reproduces a run.
 *
 * Values (frequencies in kHz):
 *   frequency (double 100..30000), gain (int dB 0..60), volume (int % 0..100),
 *   squelch (int dBm -130..-30), level (double dBm -130..0, whole dB), carrier (bool, level >= squelch),
 *   attenuator (bool, -20 dB), agc (selection Slow Fast), notes (text),
 *   mode (selection AM FM USB LSB CW; the next step after a change selects the mode's bandwidth),
 *   bandwidth (selection 0.5 1.8 2.4 3.0 6.0 9.0 15.0 kHz, item numbers in kHz; how far off-tune a
 *   station is heard), options (multi-selection: noise blanker, notch, preamp +10 dB),
 *   channels (multi-selection of 300 channels on the 5 kHz grid from 5900 kHz; the band monitor marks
 *   those it hears a carrier on, a few channels per step), scan/active (bool), scan/position (int % 0..100 of the scan band), scan/speed (int 1..10 per step),
 *   scan/hold (int s 0..10 on a carrier), scan/from and scan/to (double, the scan band),
 *   site/latitude, site/longitude (double degrees, the receiving site),
 *   transmitter/latitude, transmitter/longitude (double degrees, a reference transmitter),
 *   scan/found (double, the last carrier the scan stopped on), alarms/overload (bool, level above -50 dBm),
 *   alarms/status (int lamp colour: 0 idle, 1 overload, 2 scanning, 3 carrier), alarms/record (bool, the
 *   user's), acquisition/start and acquisition/length (microsecond stamps, whole seconds), and the results
 *   level, bandwidth, fieldstrength and offset, each a branch of NAME, VALUE, UNIT and INVALID (the last
 *   two need a carrier; the level's flag is the user's), and the user's view of it: view/hold and
 *   view/averaging (selections Off On), view/markers (multi-selection of strings, keys 0 to 3), view/unit
 *   (selection dBm dBuV) and view/range (selection Full, Weak signals, Strong signals).
 */
class Instrument : public QObject
{
    Q_OBJECT

public:
    /// Simulated time per step, also the timer's interval.
    static constexpr int StepMs = 50;

    explicit Instrument(QObject* parent = nullptr);
    /// Stops and removes the instrument's values from the tree.
    ~Instrument() override;

    /// The branch the instrument owns.
    static QString root() { return QStringLiteral("/receiver"); }
    /// Every path the instrument creates, sorted.
    static QStringList paths();

    /// The filter a mode switches to, as a key of /receiver/bandwidth, by the key of /receiver/mode's item.
    static long bandwidthKeyOfMode(long modeKey);

    /// Restarts the simulation from step 0 with noise drawn from \a seed.
    void setSeed(quint32 seed);
    quint32 seed() const { return m_nSeed; }

    void start();
    void stop();
    bool isRunning() const { return m_timer.isActive(); }

    /// Advances the simulation by one step of StepMs.
    void step();
    quint64 stepCount() const { return m_nSteps; }
    /// The simulated time: stepCount() * StepMs.
    qint64 simulatedMs() const { return qint64(m_nSteps) * StepMs; }

    /**
     * \brief Re-creates the values a user removed (with their initial contents) and enables every value
     * of the instrument. Returns the number of values re-created.
     */
    int restore();
    /**
     * \brief Re-creates the one value at \a path with its initial contents if it is gone, or enables it.
     * False for a path the instrument does not make; restored() follows a re-creation.
     */
    bool restoreValue(const QString& path);

Q_SIGNALS:
    void stepped(quint64 count);
    void restored(int recreated);

private:
    void rememberDial();
    double signalLevel(double frequencyKHz, double t);
    double gaussian();
    void updateResults(double tunedKHz, double level, bool carrier, bool scanning);
    void monitorChannels(double t);

    QTimer m_timer;
    QRandomGenerator m_rng;
    quint32 m_nSeed = 0;
    quint64 m_nSteps = 0;
    // What the instrument last wrote, to tell the user's turning of the dial from its own.
    double m_fLastPosition = -1;
    double m_fLastFrequency = -1;
    long m_nLastMode = -1;
    int m_nHoldSteps = 0;      // steps left to stay on a carrier found by the scan
    bool m_bSkipping = false;  // the scan has let go of a carrier and ignores it until it is gone
    bool m_bFoundNoted = false; // the carrier the scan holds on is in scan/found
};
