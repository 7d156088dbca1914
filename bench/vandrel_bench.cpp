// vandrel-bench: how long the tree takes to find a path among 1,000 to 1,000,000; what making,
// deleting and holding many sliders bound to one value costs, and a recorded click; what one write of a
// number costs until N bound sliders show it, next to the same fan-out done with hand-wired signals
// (the floor: the sliders' own cost) and with QDataWidgetMapper; and what one check mark of a
// multi-selection of thousands of items costs each selection control, against a rebuild.
//
// Run a Release build. Extra arguments go to Google Benchmark (--benchmark_filter=..., and so on).

#include <plinthor/resortpopupmenu.h>
#include <plinthor/sortlistview.h>
#include <vandrel/vccombobox.h>
#include <vandrel/vccheckbox.h>
#include <vandrel/vclabel.h>
#include <vandrel/vcmultiplecheck.h>
#include <vandrel/vcslider.h>
#include <values/values.h>

#include <benchmark/benchmark.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QTreeWidget>
#include <QDataWidgetMapper>
#include <QElapsedTimer>
#include <QThread>
#include <QFile>
#include <QLabel>
#include <QSlider>
#include <QStandardItemModel>
#include <QWidget>

#include <malloc.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <values/undo.h>

namespace {

constexpr int kMinimum = 0;
constexpr int kMaximum = 100;
// Every case alternates between these two positions, so that each write is a real change.
constexpr int kLow = 25;
constexpr int kHigh = 75;

constexpr int kValuesPerGroup = 1000; // values per group of the tree's paths
constexpr int kLookupKeys = 1 << 14;  // distinct paths cycled through, so that one hot entry proves nothing

const int kFanOuts[] = {1, 100, 1000};

const char* const kFloor = "write/floor-qslider-signals";
const char* const kBound = "write/vcslider-bound";
// Diagnostics: VCSlider as it is, minus the write-back of its own valueChanged(); and a sketch of
// the same write-back done from sliderChange() instead of through a connection to itself.
const char* const kBoundNoWriteBack = "diag/vcslider-no-writeback";
const char* const kBoundDirectWriteBack = "diag/vcslider-writeback-in-sliderchange";
const char* const kMapperEach = "write/qdatawidgetmapper-per-slider";
const char* const kMapperShared = "write/qdatawidgetmapper-shared";
const char* const kMapperNamed = "write/qdatawidgetmapper-shared-named-property";
const char* const kLabelFloor = "label/floor-qlabel-settext";
const char* const kLabelBound = "label/vclabel-bound";
// One number written 10,000 times a second into 100 bound labels for half a second of real time.
const char* const kCoalesceOff = "coalesce/off";
const char* const kCoalesceOn = "coalesce/20ms";
constexpr int kCoalesceLabels = 100;
constexpr int kCoalesceWrites = 5000;
constexpr int kCoalesceWriteGapUs = 100;
constexpr int kCoalesceInterval = 20;
const char* const kSelectCheck[] = {"select/check-comboboxclassic", "select/check-comboboxbuttonstyle",
                                   "select/check-multiplecheck"};
const char* const kSelectRebuild[] = {"select/rebuild-comboboxclassic", "select/rebuild-comboboxbuttonstyle",
                                     "select/rebuild-multiplecheck"};
const int kSelectionSizes[] = {1000, 10000};
const char* const kFindHit = "find/hit";
const char* const kFindMiss = "find/miss";
const int kFindSizes[] = {1000, 100000, 1000000};
// Many sliders on one value: building, tearing down and the heap they hold.
const int kManySizes[] = {2000, 20000};
const char* const kCreateFloor = "create/floor-qslider-hand-wired";
const char* const kCreateBound = "create/vcslider-bound";
const char* const kDestroyFloor = "destroy/floor-qslider-hand-wired";
const char* const kDestroyBound = "destroy/vcslider-bound";
const char* const kCreateMapper = "create/qdatawidgetmapper";
const char* const kDestroyMapper = "destroy/qdatawidgetmapper";
const char* const kHeapMapper = "heap/qdatawidgetmapper";
const int kHeapCount = 2000;
const char* const kHeapBare = "heap/qslider-bare";
const char* const kHeapFloor = "heap/floor-qslider-hand-wired";
const char* const kHeapBound = "heap/vcslider-bound";
const char* const kClickOff = "click/vccheckbox-undo-off";
const char* const kClickRecorded = "click/vccheckbox-recorded";

QString treePath(int group, int value)
{
    return QStringLiteral("/bench/group%1/value%2").arg(group).arg(value);
}

// The hand-wired writer of the floor case: one signal, connected to every slider's setValue().
class WriteSource : public QObject
{
    Q_OBJECT
Q_SIGNALS:
    void valueChanged(int value);
};

// Alternates between kLow and kHigh, starting away from the sliders' initial kLow.
class Alternator
{
public:
    int Next()
    {
        m_nLast = m_nLast == kLow ? kHigh : kLow;
        return m_nLast;
    }
    int Last() const { return m_nLast; }

private:
    int m_nLast = kLow;
};

// Puts \a value into the tree at \a path; otherwise deletes it and skips the case with \a failure.
bool addToTree(benchmark::State& state, const QString& path, values::ValueBase* value, const char* failure)
{
    if (values::Tree::Instance()->Add(path, value))
        return true;
    delete value;
    state.SkipWithError(failure);
    return false;
}

// Each timed write goes through one of these out-of-line functions: the call costs the same in every
// case, and a profiler can collect exactly the writes with --toggle-collect=*bench_write*.
Q_NEVER_INLINE void bench_writeSignal(WriteSource& source, int value)
{
    Q_EMIT source.valueChanged(value);
}

Q_NEVER_INLINE void bench_writeNumber(values::IValueNumeric* numeric, int value)
{
    numeric->SetValue(double(value), nullptr);
}

Q_NEVER_INLINE void bench_writeModel(QStandardItemModel& model, const QModelIndex& cell, int value)
{
    model.setData(cell, value);
}

QSlider* addPlainSlider(QWidget* parent, std::vector<QSlider*>& sliders)
{
    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setRange(kMinimum, kMaximum);
    slider->setValue(kLow);
    sliders.push_back(slider);
    return slider;
}

// A timing is only worth reporting when every slider really followed the writes.
void requireAllAt(benchmark::State& state, const std::vector<QSlider*>& sliders, int expected)
{
    for (const QSlider* slider : sliders) {
        if (slider->value() != expected || slider->minimum() != kMinimum || slider->maximum() != kMaximum) {
            state.SkipWithError("a slider did not follow the writes");
            return;
        }
    }
}

void BM_Floor(benchmark::State& state)
{
    const int count = int(state.range(0));
    QWidget container;
    WriteSource source;
    std::vector<QSlider*> sliders;
    for (int i = 0; i < count; ++i)
        QObject::connect(&source, &WriteSource::valueChanged, addPlainSlider(&container, sliders), &QSlider::setValue);
    QCoreApplication::sendPostedEvents();

    Alternator values;
    for (auto _ : state)
        bench_writeSignal(source, values.Next());
    requireAllAt(state, sliders, values.Last());
}

enum class WriteBack { Connected, Removed, InSliderChange };

// VCSlider with its self-connection cut and the write-back made from sliderChange(), which
// QAbstractSlider::setValue() calls just before it emits valueChanged(): the same writes in the same
// order, without a signal dispatch per slider.
class DirectWriteBackSlider : public VCSlider
{
public:
    DirectWriteBackSlider(QWidget* parent, values::IValueNumeric* numeric)
        : VCSlider(parent)
        , m_pNumeric(numeric)
    {
    }

protected:
    void sliderChange(SliderChange change) override
    {
        QSlider::sliderChange(change);
        if (change == SliderValueChange && m_pNumeric)
            m_pNumeric->SetValue(double(value()), this);
    }

private:
    values::IValueNumeric* m_pNumeric;
};

void BM_Bound(benchmark::State& state, WriteBack writeBack)
{
    const int count = int(state.range(0));
    const QString path = QStringLiteral("/bench/fanout/n%1").arg(count);
    auto* number = new values::IntNumeric(kLow, kMinimum, kMaximum, 1);
    if (!addToTree(state, path, number, "the number could not be added to the tree"))
        return;
    values::IValueNumeric* numeric = number;
    {
        QWidget container;
        std::vector<QSlider*> sliders;
        bool bound = true;
        for (int i = 0; i < count; ++i) {
            VCSlider* slider = writeBack == WriteBack::InSliderChange ? new DirectWriteBackSlider(&container, numeric)
                                                                      : new VCSlider(&container);
            bound = slider->SetNumeric_ValuePath(path) && bound;
            if (writeBack != WriteBack::Connected)
                bound = QObject::disconnect(slider, SIGNAL(valueChanged(int)), slider, SLOT(InternalValueChanged(int))) && bound;
            sliders.push_back(slider);
        }
        QCoreApplication::sendPostedEvents();
        if (!bound || number->ObserverCount() != count) {
            state.SkipWithError("a slider did not bind");
        } else {
            Alternator values;
            for (auto _ : state)
                bench_writeNumber(numeric, values.Next());
            requireAllAt(state, sliders, values.Last());
            if (numeric->GetValue() != double(values.Last()))
                state.SkipWithError("the number did not keep the last write");
        }
    } // the sliders detach before the number goes
    values::Tree::Instance()->Remove(path);
}

// The labels' cases: each write is a new number, shown with one decimal and a unit.
class NumberSource : public QObject
{
    Q_OBJECT
Q_SIGNALS:
    void changed(double value);
};

Q_NEVER_INLINE void bench_writeShown(NumberSource& source, double value)
{
    Q_EMIT source.changed(value);
}

Q_NEVER_INLINE void bench_writeDouble(values::IValueNumeric* numeric, double value)
{
    numeric->SetValue(value, nullptr);
}

// Cycles through 1,000 numbers a tenth apart, so that every write changes every label's text.
double nthNumber(int i)
{
    return double(i % 1000) / 10.0;
}

QString shownNumber(double value)
{
    return QString::number(value, 'f', 1) + QLatin1String(" dBm");
}

void requireLabelsAt(benchmark::State& state, const std::vector<QLabel*>& labels, double expected)
{
    for (const QLabel* label : labels) {
        if (label->text() != shownNumber(expected)) {
            state.SkipWithError("a label did not follow the writes");
            return;
        }
    }
}

// The floor: plain labels, each formatting the number itself in a slot connected by hand.
void BM_LabelFloor(benchmark::State& state)
{
    const int count = int(state.range(0));
    QWidget container;
    NumberSource source;
    std::vector<QLabel*> labels;
    for (int i = 0; i < count; ++i) {
        auto* label = new QLabel(&container);
        QObject::connect(&source, &NumberSource::changed, label, [label](double value) { label->setText(shownNumber(value)); });
        labels.push_back(label);
    }
    int n = 0;
    for (auto _ : state)
        bench_writeShown(source, nthNumber(++n));
    requireLabelsAt(state, labels, nthNumber(n));
}

// \a count labels in \a container showing the number at \a path with one decimal and a unit.
bool makeBoundLabels(QWidget* container, const QString& path, int count, std::vector<QLabel*>& labels)
{
    bool bound = true;
    for (int i = 0; i < count; ++i) {
        auto* label = new VCLabel(container, "level", 0);
        label->SetSuffix(QStringLiteral("dBm"));
        label->SetFormat(3, 1, 1.0);
        bound = label->SetText_ValuePath(path, true) && bound;
        labels.push_back(label);
    }
    return bound;
}

void BM_LabelBound(benchmark::State& state)
{
    const int count = int(state.range(0));
    const QString path = QStringLiteral("/bench/labels/n%1").arg(count);
    auto* number = new values::DoubleNumeric(0.0, -1e9, 1e9);
    if (!addToTree(state, path, number, "the number could not be added to the tree"))
        return;
    {
        QWidget container;
        std::vector<QLabel*> labels;
        const bool bound = makeBoundLabels(&container, path, count, labels);
        if (!bound) {
            state.SkipWithError("a label did not bind");
        } else {
            int n = 0;
            for (auto _ : state)
                bench_writeDouble(number, nthNumber(++n));
            requireLabelsAt(state, labels, nthNumber(n));
        }
    }
    values::Tree::Instance()->Remove(path);
}

// The whole cost of a fast writer: the writes, the event loop that runs between them and every label
// update. The writer keeps to the clock (falling behind, it writes without waiting), so the time the
// merging of value changes sees is real; the wait for the last merged change is measured too.
void BM_Coalesce(benchmark::State& state, int interval)
{
    const QString path = QStringLiteral("/bench/coalesce/n%1").arg(interval);
    auto* number = new values::DoubleNumeric(0.0, -1e9, 1e9);
    if (!addToTree(state, path, number, "the number could not be added to the tree"))
        return;
    {
        QWidget container;
        std::vector<QLabel*> labels;
        const bool bound = makeBoundLabels(&container, path, int(state.range(0)), labels);
        struct : IObserver
        {
            int changes = 0;
            void Update(Observable*, TChangeCode code) override { changes += code == ValueChanged; }
        } counter;
        number->Attach(&counter);
        values::Tree::Instance()->SetUpdateInterval(interval);
        int n = 0;
        for (auto _ : state) {
            QElapsedTimer clock;
            clock.start();
            for (int i = 0; i < kCoalesceWrites; ++i) {
                const qint64 dueNs = qint64(i) * kCoalesceWriteGapUs * 1000;
                const qint64 aheadNs = dueNs - clock.nsecsElapsed();
                if (aheadNs > 0)
                    QThread::usleep(unsigned(aheadNs / 1000));
                QCoreApplication::processEvents();
                bench_writeDouble(number, nthNumber(++n));
            }
            while (clock.elapsed() < qint64(kCoalesceWrites) * kCoalesceWriteGapUs / 1000 + 2 * interval + 1) {
                QThread::usleep(1000);
                QCoreApplication::processEvents();
            }
        }
        values::Tree::Instance()->SetUpdateInterval(0);
        number->Detach(&counter);
        state.counters["notifications"] = counter.changes;
        if (!bound)
            state.SkipWithError("a label did not bind");
        else
            requireLabelsAt(state, labels, nthNumber(n));
    }
    values::Tree::Instance()->Remove(path);
}

// --- selection controls on a multi-selection of N items ---

enum class SelectionControl { Classic, ButtonStyle, MultipleCheck };
enum class SelectionChange { CheckMark, Items };

Q_NEVER_INLINE void bench_writeCheck(values::StringMultiSelection* set, int key, bool checked)
{
    set->SetItemChecked(key, checked, nullptr);
}

Q_NEVER_INLINE void bench_writeItems(values::StringMultiSelection* set, const QString& severalText)
{
    // A new text for several checked items: the journal says the entries were rebuilt, and every
    // reader rebuilds from the items.
    set->SetSeveralEntryText(severalText);
}

// Whether the control shows the check mark of \a key as the value holds it.
bool showsCheckOf(QWidget* control, SelectionControl kind, values::StringMultiSelection* set, int key)
{
    const bool checked = set->IsItemChecked(key);
    switch (kind) {
    case SelectionControl::Classic:
        return !checked || static_cast<QComboBox*>(control)->currentText() == set->GetItemByKey(key)->GetName();
    case SelectionControl::ButtonStyle: {
        QAction* entry = static_cast<VCComboBoxButtonStyle*>(control)->GetPopup()->findItem(key);
        return entry && entry->isChecked() == checked;
    }
    case SelectionControl::MultipleCheck: {
        // Rows stand in key order, and the keys count 0, 1, 2, ...
        auto* row = dynamic_cast<CheckSortListViewItem*>(static_cast<QTreeWidget*>(control)->topLevelItem(key));
        return row && row->isOn() == checked;
    }
    }
    return false;
}

void BM_Select(benchmark::State& state, SelectionControl kind, SelectionChange change)
{
    const int count = int(state.range(0));
    const QString path = QStringLiteral("/bench/select/%1/%2/%3").arg(int(kind)).arg(int(change)).arg(count);
    // The drop-down list takes single-choice sets only; the others show any number of marks.
    auto* set = new values::StringMultiSelection(kind == SelectionControl::Classic ? 1 : 0);
    for (int i = 0; i < count; ++i)
        set->AddItem(unsigned(i), QStringLiteral("channel %1").arg(i), kind != SelectionControl::Classic && i % 3 == 0);
    if (!addToTree(state, path, set, "the selection could not be added to the tree"))
        return;
    {
        QWidget container;
        QWidget* control = nullptr;
        bool bound = false;
        switch (kind) {
        case SelectionControl::Classic: {
            auto* combo = new VCComboBoxClassic(&container, "classic");
            bound = combo->SetValueSelection_ValuePath(path);
            control = combo;
            break;
        }
        case SelectionControl::ButtonStyle: {
            auto* button = new VCComboBoxButtonStyle(&container, "button", false, false);
            bound = button->SetValueSelection_ValuePath(path);
            control = button;
            break;
        }
        case SelectionControl::MultipleCheck: {
            auto* list = new VCMultipleCheck(&container, "list");
            bound = list->SetCheckedStringVector_ValuePath(path);
            control = list;
            break;
        }
        }
        // Two keys in the middle: the classic list moves its one mark between them, the others flip one.
        const int keyA = count / 2;
        const int keyB = count / 2 + 1;
        if (!bound) {
            state.SkipWithError("the control did not bind");
        } else if (change == SelectionChange::CheckMark) {
            int n = 0;
            for (auto _ : state) {
                ++n;
                if (kind == SelectionControl::Classic)
                    bench_writeCheck(set, n % 2 ? keyA : keyB, true);
                else
                    bench_writeCheck(set, keyA, n % 2 == 1);
            }
            if (!showsCheckOf(control, kind, set, keyA) || !showsCheckOf(control, kind, set, keyB))
                state.SkipWithError("the control did not follow the check marks");
        } else {
            const QString texts[] = {QStringLiteral("several"), QStringLiteral("more than one")};
            int n = 0;
            for (auto _ : state)
                bench_writeItems(set, texts[++n % 2]);
            if (!showsCheckOf(control, kind, set, 0))
                state.SkipWithError("the control did not rebuild");
        }
    }
    values::Tree::Instance()->Remove(path);
}

// One mapper per slider, each on the model's only cell: what N independent forms showing one
// field would do.
void BM_MapperEach(benchmark::State& state)
{
    const int count = int(state.range(0));
    QStandardItemModel model(1, 1);
    const QModelIndex cell = model.index(0, 0);
    model.setData(cell, kLow);
    QWidget container;
    std::vector<QSlider*> sliders;
    for (int i = 0; i < count; ++i) {
        auto* mapper = new QDataWidgetMapper(&model);
        mapper->setModel(&model);
        mapper->addMapping(addPlainSlider(&container, sliders), 0);
        mapper->toFirst();
    }
    QCoreApplication::sendPostedEvents();

    Alternator values;
    for (auto _ : state)
        bench_writeModel(model, cell, values.Next());
    requireAllAt(state, sliders, values.Last());
}

// One mapper with all N sliders mapped to the same section. Without a property name the mapper's
// delegate looks up the slider's USER property on every change; naming "value" spares that.
void BM_MapperShared(benchmark::State& state, bool namedProperty)
{
    const int count = int(state.range(0));
    QStandardItemModel model(1, 1);
    const QModelIndex cell = model.index(0, 0);
    model.setData(cell, kLow);
    QWidget container;
    std::vector<QSlider*> sliders;
    QDataWidgetMapper mapper;
    mapper.setModel(&model);
    for (int i = 0; i < count; ++i) {
        QSlider* slider = addPlainSlider(&container, sliders);
        if (namedProperty)
            mapper.addMapping(slider, 0, "value");
        else
            mapper.addMapping(slider, 0);
    }
    mapper.toFirst();
    QCoreApplication::sendPostedEvents();

    Alternator values;
    for (auto _ : state)
        bench_writeModel(model, cell, values.Next());
    requireAllAt(state, sliders, values.Last());
}

// Lookup keys are built afresh rather than copied from the tree's own, so that no comparison can
// short-cut on shared string data; they come in a fixed pseudo-random order.
std::vector<QString> lookupKeys(bool hits, int count)
{
    std::mt19937 random(hits ? 20240501u : 20240502u);
    // Misses look like hits (same prefix and length range) but name values past the last one.
    std::uniform_int_distribution<int> index(0, count - 1);
    std::vector<QString> keys;
    keys.reserve(kLookupKeys);
    for (int k = 0; k < kLookupKeys; ++k) {
        const int i = index(random);
        const int group = i / kValuesPerGroup;
        const int value = i % kValuesPerGroup;
        keys.push_back(treePath(group, hits ? value : value + kValuesPerGroup));
    }
    return keys;
}

// The tree holds exactly the first \a count values of the /bench/groupG/valueV family (value i is
// group i / kValuesPerGroup, value i % kValuesPerGroup); values are added or removed to get there.
int g_nTreeValues = 0;

bool resizeTree(int count)
{
    values::Tree* tree = values::Tree::Instance();
    for (; g_nTreeValues > count; --g_nTreeValues) {
        const int i = g_nTreeValues - 1;
        tree->Remove(treePath(i / kValuesPerGroup, i % kValuesPerGroup));
    }
    for (; g_nTreeValues < count; ++g_nTreeValues) {
        const int i = g_nTreeValues;
        auto* number = new values::IntNumeric(i % kValuesPerGroup, 0, kValuesPerGroup, 1);
        if (!tree->Add(treePath(i / kValuesPerGroup, i % kValuesPerGroup), number)) {
            delete number;
            return false;
        }
    }
    return true;
}

void BM_Find(benchmark::State& state, bool hits)
{
    const int count = int(state.range(0));
    if (!resizeTree(count)) {
        state.SkipWithError("could not fill the tree");
        return;
    }
    const values::Tree* tree = values::Tree::Instance();
    const std::vector<QString> keys = lookupKeys(hits, count);
    for (const QString& key : keys) {
        if ((tree->Find(key) != nullptr) != hits) {
            state.SkipWithError(hits ? "a present path was not found" : "an absent path was found");
            return;
        }
    }
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(tree->Find(keys[next]));
        next = (next + 1) & (kLookupKeys - 1);
    }
    state.SetItemsProcessed(state.iterations());
}

// --- many sliders on one value: create and bind, destroy, heap ---

// The floor's model object: one number with a change signal and a setter, as a hand-written form
// would hold it.
class NumberModel : public QObject
{
    Q_OBJECT
public:
    int value() const { return m_nValue; }
public Q_SLOTS:
    void setValue(int value)
    {
        if (value == m_nValue)
            return;
        m_nValue = value;
        Q_EMIT valueChanged(value);
    }
Q_SIGNALS:
    void valueChanged(int value);

private:
    int m_nValue = kLow;
};

enum class Wiring { Bare, HandWired, Bound, Mapper };

// The mapper that Wiring::Mapper adds each slider to (one for all, on one cell, property "value": the
// mapper's cheapest form); made by the case around the sliders.
QDataWidgetMapper* g_pMapper = nullptr;

// One slider as each case makes it: a name, a tool-tip, the range and the number, and a link both ways.
Q_NEVER_INLINE QSlider* bench_makeSlider(Wiring wiring, QWidget* parent, NumberModel* model, const QString& path)
{
    if (wiring == Wiring::Bound) {
        auto* slider = new VCSlider(parent, "level");
        slider->setToolTip(QStringLiteral("Level"));
        return slider->SetNumeric_ValuePath(path) ? slider : nullptr;
    }
    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setObjectName(QStringLiteral("level"));
    slider->setToolTip(QStringLiteral("Level"));
    slider->setRange(kMinimum, kMaximum);
    if (wiring == Wiring::Mapper) {
        g_pMapper->addMapping(slider, 0, "value");
        return slider;
    }
    slider->setValue(model->value());
    if (wiring == Wiring::HandWired) {
        QObject::connect(model, &NumberModel::valueChanged, slider, &QSlider::setValue);
        QObject::connect(slider, &QSlider::valueChanged, model, &NumberModel::setValue);
    }
    return slider;
}

// The number all many-slider cases bind to, at a path of its own for each case.
class SharedNumber
{
public:
    explicit SharedNumber(const QString& path)
        : m_path(path)
        , m_pNumber(new values::IntNumeric(kLow, kMinimum, kMaximum, 1))
    {
        if (!values::Tree::Instance()->Add(path, m_pNumber)) {
            delete m_pNumber;
            m_pNumber = nullptr;
        }
    }
    ~SharedNumber()
    {
        if (m_pNumber)
            values::Tree::Instance()->Remove(m_path);
    }
    values::IntNumeric* number() const { return m_pNumber; }
    const QString& path() const { return m_path; }

private:
    QString m_path;
    values::IntNumeric* m_pNumber;
};

bool makeSliders(Wiring wiring, int count, QWidget* container, NumberModel* model, const QString& path,
                 std::vector<QSlider*>& sliders)
{
    sliders.clear();
    sliders.reserve(size_t(count));
    for (int i = 0; i < count; ++i) {
        QSlider* slider = bench_makeSlider(wiring, container, model, path);
        if (!slider)
            return false;
        sliders.push_back(slider);
    }
    if (wiring == Wiring::Mapper)
        g_pMapper->toFirst(); // the mapper's fill of every slider from the model
    return true;
}

// A mapper on \a cells, child of \a container, for the sliders made next; null for other wirings.
QDataWidgetMapper* startMapper(Wiring wiring, QWidget* container, QStandardItemModel* cells)
{
    if (wiring != Wiring::Mapper)
        return nullptr;
    g_pMapper = new QDataWidgetMapper(container);
    g_pMapper->setModel(cells);
    return g_pMapper;
}

Q_NEVER_INLINE void bench_destroy(QWidget* container)
{
    delete container;
}

// Times making (or, with \a destroy, deleting) \a count sliders linked to one number; the other half
// of each round runs with the clock stopped.
void BM_Many(benchmark::State& state, Wiring wiring, bool destroy)
{
    const int count = int(state.range(0));
    SharedNumber shared(QStringLiteral("/bench/many/%1/%2/%3").arg(int(wiring)).arg(int(destroy)).arg(count));
    if (!shared.number()) {
        state.SkipWithError("the number could not be added to the tree");
        return;
    }
    NumberModel model;
    QStandardItemModel cells(1, 1);
    cells.setData(cells.index(0, 0), kLow);
    std::vector<QSlider*> sliders;
    for (auto _ : state) {
        if (destroy)
            state.PauseTiming();
        auto* container = new QWidget;
        startMapper(wiring, container, &cells);
        const bool made = makeSliders(wiring, count, container, &model, shared.path(), sliders);
        if (!destroy)
            state.PauseTiming();
        // Handled as an event loop would before anyone deletes them: a widget with events still
        // queued makes Qt search the whole queue as it goes, which would dwarf everything else.
        QCoreApplication::sendPostedEvents();
        const bool linked = made
            && (wiring == Wiring::Bound ? shared.number()->ObserverCount() == count : sliders.back()->value() == kLow);
        if (!destroy)
            delete container;
        else
            state.ResumeTiming();
        if (destroy)
            bench_destroy(container);
        else
            state.ResumeTiming();
        if (!linked) {
            state.SkipWithError("a slider did not bind");
            break;
        }
    }
    if (shared.number()->ObserverCount() != 0)
        state.SkipWithError("a destroyed slider stayed attached");
    state.SetItemsProcessed(state.iterations() * count);
}

// Heap in use, counted by the allocator: Qt allocates strings with malloc() and objects with new,
// so counting operator new alone would miss part of it.
size_t heapInUse()
{
    return mallinfo2().uordblks;
}

// Heap bytes per slider held while kHeapCount of them exist, reported as a counter; the time means
// nothing here.
void BM_Heap(benchmark::State& state, Wiring wiring)
{
    SharedNumber shared(QStringLiteral("/bench/heap/%1").arg(int(wiring)));
    NumberModel model;
    QStandardItemModel cells(1, 1);
    cells.setData(cells.index(0, 0), kLow);
    std::vector<QSlider*> sliders;
    double bytesPerSlider = 0.0;
    for (auto _ : state) {
        auto* container = new QWidget;
        startMapper(wiring, container, &cells);
        // One slider first, so that once-only allocations (meta-object caches, a connection list
        // of the model) do not count.
        bench_makeSlider(wiring, container, &model, shared.path());
        // Events a new widget posts to itself are handled before each count, so that only what the
        // sliders hold is counted.
        QCoreApplication::sendPostedEvents();
        const size_t before = heapInUse();
        const bool made = makeSliders(wiring, kHeapCount, container, &model, shared.path(), sliders);
        QCoreApplication::sendPostedEvents();
        // The vector of pointers is the bench's own; it was reserved before the count started...
        bytesPerSlider = (double(heapInUse()) - double(before) - double(sliders.capacity() * sizeof(QSlider*))) / kHeapCount;
        delete container;
        if (!made) {
            state.SkipWithError("a slider did not bind");
            break;
        }
    }
    state.counters["bytes_per_slider"] = bytesPerSlider;
}

// One user click on a check box bound to a flag, recorded for undo or with recording switched off.
Q_NEVER_INLINE void bench_click(QAbstractButton* box)
{
    box->click();
}

void BM_Click(benchmark::State& state, bool recorded)
{
    const QString path = QStringLiteral("/bench/click/%1").arg(int(recorded));
    auto* flag = new values::BoolValue(false);
    if (!addToTree(state, path, flag, "the flag could not be added to the tree"))
        return;
    {
        VCCheckBox box(nullptr, "flag");
        box.SetUndoRecordingEnabled(recorded);
        const int before = values::UndoRecorder::Instance().Count();
        if (!box.Set_ValuePath(path)) {
            state.SkipWithError("the check box did not bind");
        } else {
            for (auto _ : state)
                bench_click(&box);
            if (flag->GetValue() != box.isChecked())
                state.SkipWithError("the flag did not follow the clicks");
            else if (recorded && values::UndoRecorder::Instance().Count() <= before)
                state.SkipWithError("the clicks were not recorded");
        }
    }
    values::UndoRecorder::Instance().Clear();
    values::Tree::Instance()->Remove(path);
}

struct Result
{
    double cpuNs = 0.0;  // median
    double bestNs = 0.0; // fastest repetition
    double bytesPerSlider = 0.0; // heap cases only
    std::string error;
};

double medianOf(std::vector<double> samples)
{
    std::sort(samples.begin(), samples.end());
    const size_t middle = samples.size() / 2;
    return samples.size() % 2 ? samples[middle] : (samples[middle - 1] + samples[middle]) / 2.0;
}

double toNs(double t, benchmark::TimeUnit unit)
{
    switch (unit) {
    case benchmark::kNanosecond:
        return t;
    case benchmark::kMicrosecond:
        return t * 1e3;
    case benchmark::kMillisecond:
        return t * 1e6;
    case benchmark::kSecond:
        return t * 1e9;
    }
    return t;
}

// Prints as the console reporter does and keeps, per case and argument, the median and the fastest
// of the repetitions for the summary table.
class CollectingReporter : public benchmark::ConsoleReporter
{
public:
    using ConsoleReporter::ConsoleReporter;

    void ReportRuns(const std::vector<Run>& reports) override
    {
        ConsoleReporter::ReportRuns(reports);
        std::map<std::pair<std::string, std::string>, std::vector<const Run*>> iterationsByKey;
        for (const Run& run : reports) {
            const auto key = std::make_pair(run.run_name.function_name, run.run_name.args);
            const auto bytes = run.counters.find("bytes_per_slider");
            // Of the aggregates only the median is a heap size (the others are its spread).
            if (bytes != run.counters.end() && !run.error_occurred
                && (run.run_type == Run::RT_Iteration || run.aggregate_name == "median"))
                m_results[key].bytesPerSlider = bytes->second.value;
            if (run.error_occurred) {
                m_results[key].error = run.error_message;
            } else if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
                m_results[key].cpuNs = toNs(run.GetAdjustedCPUTime(), run.time_unit);
            } else if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "min") {
                m_results[key].bestNs = toNs(run.GetAdjustedCPUTime(), run.time_unit);
            } else if (run.run_type == Run::RT_Iteration) {
                iterationsByKey[key].push_back(&run);
            }
        }
        // Without an aggregate (one repetition, or iteration runs shown) take the median ourselves.
        for (const auto& entry : iterationsByKey) {
            Result& result = m_results[entry.first];
            if (result.cpuNs > 0.0 || !result.error.empty())
                continue;
            std::vector<double> cpu;
            for (const Run* run : entry.second)
                cpu.push_back(toNs(run->GetAdjustedCPUTime(), run->time_unit));
            result.cpuNs = medianOf(cpu);
            result.bestNs = *std::min_element(cpu.begin(), cpu.end());
        }
    }

    const Result* Find(const std::string& name, int arg) const
    {
        const auto it = m_results.find(std::make_pair(name, arg < 0 ? std::string() : std::to_string(arg)));
        return it == m_results.end() ? nullptr : &it->second;
    }

private:
    std::map<std::pair<std::string, std::string>, Result> m_results;
};

std::string cpuModel()
{
    // /proc files claim a size of 0, so read to the end instead of testing atEnd().
    QFile cpuinfo(QStringLiteral("/proc/cpuinfo"));
    if (!cpuinfo.open(QIODevice::ReadOnly))
        return "unknown";
    const QList<QByteArray> lines = cpuinfo.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("model name"))
            return line.mid(line.indexOf(':') + 1).trimmed().toStdString();
    }
    return "unknown";
}

int usableCpus()
{
    // What nproc prints: the CPUs this process may run on.
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof(set), &set) == 0)
        return CPU_COUNT(&set);
    return int(sysconf(_SC_NPROCESSORS_ONLN));
}

void printSetup()
{
    std::printf("vandrel-bench\n");
    std::printf("  machine: %d usable CPUs (nproc), %s\n", usableCpus(), cpuModel().c_str());
    std::printf("  Qt %s (built against %s), platform %s, build type %s\n", qVersion(), QT_VERSION_STR,
                qPrintable(QGuiApplication::platformName()), VANDREL_BENCH_BUILD_TYPE);
    std::printf("  tree: paths /bench/groupG/valueV with V < %d, as many as each find case asks for\n",
                kValuesPerGroup);
    std::printf("  writes: every slider has the range %d..%d; each iteration moves all of them between %d and %d\n",
                kMinimum, kMaximum, kLow, kHigh);
    std::printf("  the sliders are created but never shown: the figures are the cost of getting a value into\n"
                "  N widgets, not of painting them\n");
    std::printf("  a warning that the benchmark library was built as DEBUG concerns the distribution's\n"
                "  libbenchmark, not the code measured here\n");
    if (std::string(VANDREL_BENCH_BUILD_TYPE) != "Release")
        std::printf("  WARNING: not a Release build; the figures say little\n");
    std::printf("\n");
    std::fflush(stdout);
}

bool usable(const Result* result)
{
    return result && result->error.empty() && result->cpuNs > 0.0;
}

void printSummary(const CollectingReporter& reporter)
{
    std::printf("\nSummary: CPU time per operation, median and fastest of the repetitions\n\n");
    std::printf("Tree::Find (ns per lookup, median; fastest):\n");
    for (const int count : kFindSizes) {
        for (const char* name : {kFindHit, kFindMiss}) {
            const Result* result = reporter.Find(name, count);
            if (!result)
                continue;
            if (!result->error.empty())
                std::printf("  %-10s %8d values  FAILED: %s\n", name, count, result->error.c_str());
            else
                std::printf("  %-10s %8d values %8.1f ns (fastest %.1f)\n", name, count, result->cpuNs, result->bestNs);
        }
    }

    std::printf("\nN sliders on one value, made and linked, or deleted (ratios: to the hand-wired floor):\n\n");
    std::printf("  %-36s %6s %12s %11s %9s %9s\n", "case", "N", "ns/all", "ns/slider", "median x", "fastest x");
    for (const int count : kManySizes) {
        for (const auto& three : {std::vector<const char*>{kCreateFloor, kCreateBound, kCreateMapper},
                                  std::vector<const char*>{kDestroyFloor, kDestroyBound, kDestroyMapper}}) {
            const Result* floor = reporter.Find(three[0], count);
            for (const char* name : three) {
                const Result* result = reporter.Find(name, count);
                if (!result)
                    continue;
                if (!result->error.empty()) {
                    std::printf("  %-36s %6d   FAILED: %s\n", name, count, result->error.c_str());
                    continue;
                }
                std::printf("  %-36s %6d %12.0f %11.1f", name, count, result->cpuNs, result->cpuNs / count);
                if (usable(floor) && floor->bestNs > 0.0)
                    std::printf(" %8.2fx %8.2fx\n", result->cpuNs / floor->cpuNs, result->bestNs / floor->bestNs);
                else
                    std::printf(" %9s %9s\n", "-", "-");
            }
        }
    }

    const Result* heapBare = reporter.Find(kHeapBare, -1);
    const Result* heapFloor = reporter.Find(kHeapFloor, -1);
    const Result* heapBound = reporter.Find(kHeapBound, -1);
    const Result* heapMapper = reporter.Find(kHeapMapper, -1);
    if (heapBare && heapFloor && heapBound) {
        std::printf("\nHeap per slider, %d of them on one value (bytes in use, over a bare QSlider):\n", kHeapCount);
        std::printf("  bare QSlider %.0f, hand-wired %.0f (+%.0f), VCSlider bound %.0f (+%.0f): bound %+.0f over hand-wired\n",
                    heapBare->bytesPerSlider, heapFloor->bytesPerSlider, heapFloor->bytesPerSlider - heapBare->bytesPerSlider,
                    heapBound->bytesPerSlider, heapBound->bytesPerSlider - heapBare->bytesPerSlider,
                    heapBound->bytesPerSlider - heapFloor->bytesPerSlider);
        if (heapMapper)
            std::printf("  QDataWidgetMapper, one for all, %.0f (+%.0f)\n", heapMapper->bytesPerSlider,
                        heapMapper->bytesPerSlider - heapBare->bytesPerSlider);
    }

    const Result* clickOff = reporter.Find(kClickOff, -1);
    const Result* clickRecorded = reporter.Find(kClickRecorded, -1);
    if (usable(clickOff) && usable(clickRecorded))
        std::printf("\nOne click on a bound check box: %.0f ns with undo off, %.0f ns recorded (%.2fx)\n", clickOff->cpuNs,
                    clickRecorded->cpuNs, clickRecorded->cpuNs / clickOff->cpuNs);

    const struct
    {
        const char* name;
        const char* label;
    } cases[] = {
        {kFloor, "QSlider + signal/slot (floor)"},
        {kBound, "VCSlider bound to one number"},
        {kMapperEach, "QDataWidgetMapper, one per slider"},
        {kMapperShared, "QDataWidgetMapper, one for all"},
        {kMapperNamed, "QDataWidgetMapper, one for all, \"value\""},
        {kBoundNoWriteBack, "diag: VCSlider, write-back cut"},
        {kBoundDirectWriteBack, "diag: VCSlider, write-back in sliderChange"},
    };
    std::printf("\nOne write reaching N sliders (ratios: to the floor of the same N):\n\n");
    std::printf("  %-44s %5s %12s %11s %10s %9s %9s\n", "case", "N", "ns/write", "ns/slider", "fastest", "median x",
                "fastest x");
    for (const int count : kFanOuts) {
        const Result* floor = reporter.Find(kFloor, count);
        for (const auto& c : cases) {
            const Result* result = reporter.Find(c.name, count);
            if (!result)
                continue;
            if (!result->error.empty()) {
                std::printf("  %-44s %5d   FAILED: %s\n", c.label, count, result->error.c_str());
                continue;
            }
            std::printf("  %-44s %5d %12.0f %11.1f %10.0f", c.label, count, result->cpuNs, result->cpuNs / count,
                        result->bestNs);
            if (usable(floor) && floor->bestNs > 0.0)
                std::printf(" %8.2fx %8.2fx\n", result->cpuNs / floor->cpuNs, result->bestNs / floor->bestNs);
            else
                std::printf(" %9s %9s\n", "-", "-");
        }
    }

    std::printf("\nOne number reaching N labels, each showing it with one decimal and a unit:\n\n");
    std::printf("  %-44s %5s %12s %11s %9s\n", "case", "N", "ns/write", "ns/label", "median x");
    for (const int count : kFanOuts) {
        const Result* labelFloor = reporter.Find(kLabelFloor, count);
        for (const auto& c : {std::make_pair(kLabelFloor, "QLabel::setText by hand (floor)"),
                              std::make_pair(kLabelBound, "VCLabel bound to one number")}) {
            const Result* result = reporter.Find(c.first, count);
            if (!result)
                continue;
            if (!result->error.empty()) {
                std::printf("  %-44s %5d   FAILED: %s\n", c.second, count, result->error.c_str());
                continue;
            }
            std::printf("  %-44s %5d %12.0f %11.1f", c.second, count, result->cpuNs, result->cpuNs / count);
            if (usable(labelFloor))
                std::printf(" %8.2fx\n", result->cpuNs / labelFloor->cpuNs);
            else
                std::printf(" %9s\n", "-");
        }
    }

    const Result* coalesceOff = reporter.Find(kCoalesceOff, kCoalesceLabels);
    const Result* coalesceOn = reporter.Find(kCoalesceOn, kCoalesceLabels);
    const Result* writerAlone = reporter.Find(kCoalesceOff, 0);
    if (usable(coalesceOff) && usable(coalesceOn) && usable(writerAlone))
        std::printf("\nOne number written %d times in %.1f s into %d labels, process CPU time: %.0f ms without merging,\n"
                    "%.0f ms merging changes within %d ms (%.1fx less); the writer and event loop alone: %.0f ms\n",
                    kCoalesceWrites, kCoalesceWrites * kCoalesceWriteGapUs / 1e6, kCoalesceLabels, coalesceOff->cpuNs / 1e6,
                    coalesceOn->cpuNs / 1e6, kCoalesceInterval, coalesceOff->cpuNs / coalesceOn->cpuNs,
                    writerAlone->cpuNs / 1e6);

    std::printf("\nOne change of a multi-selection of N items shown by one control: a check mark, against a\n"
                "change of the items that makes the control rebuild:\n\n");
    std::printf("  %-28s %6s %14s %14s %11s\n", "control", "N", "check mark ns", "rebuild ns", "rebuild x");
    const char* const selectionLabels[] = {"VCComboBoxClassic", "VCComboBoxButtonStyle", "VCMultipleCheck"};
    for (int k = 0; k < 3; ++k) {
        for (const int count : kSelectionSizes) {
            const Result* check = reporter.Find(kSelectCheck[k], count);
            const Result* rebuild = reporter.Find(kSelectRebuild[k], count);
            if (!check || !rebuild)
                continue;
            if (!check->error.empty() || !rebuild->error.empty()) {
                std::printf("  %-28s %6d   FAILED: %s\n", selectionLabels[k], count,
                            (check->error.empty() ? rebuild->error : check->error).c_str());
                continue;
            }
            std::printf("  %-28s %6d %14.0f %14.0f %10.0fx\n", selectionLabels[k], count, check->cpuNs, rebuild->cpuNs,
                        rebuild->cpuNs / check->cpuNs);
        }
        const Result* small = reporter.Find(kSelectCheck[k], kSelectionSizes[0]);
        const Result* large = reporter.Find(kSelectCheck[k], kSelectionSizes[1]);
        const Result* largeRebuild = reporter.Find(kSelectRebuild[k], kSelectionSizes[1]);
        if (usable(small) && usable(large) && usable(largeRebuild))
            std::printf("  %-28s a check mark at %d items costs %.2fx what it costs at %d; a rebuild %.0fx a check mark: %s\n",
                        "", kSelectionSizes[1], large->cpuNs / small->cpuNs, kSelectionSizes[0],
                        largeRebuild->cpuNs / large->cpuNs,
                        largeRebuild->cpuNs >= 100.0 * large->cpuNs ? "at least 100x" : "NOT 100x");
    }

    const int largest = kFanOuts[sizeof(kFanOuts) / sizeof(kFanOuts[0]) - 1];
    const Result* floor = reporter.Find(kFloor, largest);
    const Result* bound = reporter.Find(kBound, largest);
    std::printf("\n");
    if (usable(floor) && usable(bound)) {
        const double overhead = bound->cpuNs / floor->cpuNs - 1.0;
        std::printf("Binding overhead at N = %d: %+.0f%% over the floor (median %.0f ns against %.0f ns per write): %s\n",
                    largest, overhead * 100.0, bound->cpuNs, floor->cpuNs,
                    overhead <= 0.20 ? "within 20%" : "NOT within 20%");
    } else {
        std::printf("Binding overhead at N = %d: not measured in this run\n", largest);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    // On a shared machine a burst of load hits whatever runs at that moment. Many short repetitions,
    // shuffled across all cases and summarised by their median, spread it evenly; the caller's flags
    // come later and win.
    std::vector<char*> args{argv[0]};
    char repetitions[] = "--benchmark_repetitions=15";
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    char minTime[] = "--benchmark_min_time=0.1";
    char aggregatesOnly[] = "--benchmark_display_aggregates_only=true";
    args.push_back(repetitions);
    args.push_back(interleave);
    args.push_back(minTime);
    args.push_back(aggregatesOnly);
    for (int i = 1; i < argc; ++i)
        args.push_back(argv[i]);
    int benchArgc = int(args.size());
    args.push_back(nullptr);
    benchmark::Initialize(&benchArgc, args.data());
    if (benchmark::ReportUnrecognizedArguments(benchArgc, args.data()))
        return 1;

    printSetup();

    const auto withBest = [](benchmark::internal::Benchmark* b) {
        return b->ComputeStatistics("min", [](const std::vector<double>& v) { return *std::min_element(v.begin(), v.end()); });
    };
    for (const int count : kFindSizes) {
        withBest(benchmark::RegisterBenchmark(kFindHit, BM_Find, true)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kFindMiss, BM_Find, false)->Arg(count));
    }
    for (const int count : kManySizes) {
        withBest(benchmark::RegisterBenchmark(kCreateFloor, BM_Many, Wiring::HandWired, false)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kCreateBound, BM_Many, Wiring::Bound, false)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kDestroyFloor, BM_Many, Wiring::HandWired, true)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kDestroyBound, BM_Many, Wiring::Bound, true)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kCreateMapper, BM_Many, Wiring::Mapper, false)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kDestroyMapper, BM_Many, Wiring::Mapper, true)->Arg(count));
    }
    benchmark::RegisterBenchmark(kHeapBare, BM_Heap, Wiring::Bare)->Iterations(1);
    benchmark::RegisterBenchmark(kHeapFloor, BM_Heap, Wiring::HandWired)->Iterations(1);
    benchmark::RegisterBenchmark(kHeapBound, BM_Heap, Wiring::Bound)->Iterations(1);
    benchmark::RegisterBenchmark(kHeapMapper, BM_Heap, Wiring::Mapper)->Iterations(1);
    withBest(benchmark::RegisterBenchmark(kClickOff, BM_Click, false));
    withBest(benchmark::RegisterBenchmark(kClickRecorded, BM_Click, true));
    for (const int count : kFanOuts) {
        withBest(benchmark::RegisterBenchmark(kFloor, BM_Floor)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kBound, BM_Bound, WriteBack::Connected)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kMapperEach, BM_MapperEach)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kMapperShared, BM_MapperShared, false)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kMapperNamed, BM_MapperShared, true)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kBoundNoWriteBack, BM_Bound, WriteBack::Removed)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kBoundDirectWriteBack, BM_Bound, WriteBack::InSliderChange)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kLabelFloor, BM_LabelFloor)->Arg(count));
        withBest(benchmark::RegisterBenchmark(kLabelBound, BM_LabelBound)->Arg(count));
    }

    for (const auto& c : {std::make_pair(kCoalesceOff, 0), std::make_pair(kCoalesceOn, kCoalesceInterval)}) {
        auto* b = withBest(benchmark::RegisterBenchmark(c.first, BM_Coalesce, c.second));
        if (c.second == 0)
            b->Arg(0); // the writer, its pacing and the event loop alone
        b->Arg(kCoalesceLabels)->Iterations(1)->Repetitions(5)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);
    }

    for (const int count : kSelectionSizes) {
        for (int k = 0; k < 3; ++k) {
            const auto kind = SelectionControl(k);
            withBest(benchmark::RegisterBenchmark(kSelectCheck[k], BM_Select, kind, SelectionChange::CheckMark)->Arg(count));
            withBest(benchmark::RegisterBenchmark(kSelectRebuild[k], BM_Select, kind, SelectionChange::Items)->Arg(count));
        }
    }

    CollectingReporter reporter(isatty(fileno(stdout)) ? benchmark::ConsoleReporter::OO_Defaults
                                                       : benchmark::ConsoleReporter::OO_Tabular);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    printSummary(reporter);

    values::Tree::Instance()->Clear();
    benchmark::Shutdown();
    return 0;
}

#include "vandrel_bench.moc"
