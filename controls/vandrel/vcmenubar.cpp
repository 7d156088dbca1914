#include <vandrel/vcmenubar.h>

#include <vandrel/binding/binding.h>

#include <brevanbase/brevanbase.h>

#include <QAction>
#include <QKeySequence>

namespace {

const char* const kUnit = "controls/vandrel/vcmenubar";

} // namespace

VCMenuBar::VCMenuBar(QWidget* parent, const char* name)
    : QMenuBar(parent)
    , m_pHeldWrites(new HeldWrites)
{
    if (name)
        setObjectName(QString::fromUtf8(name));
    connect(this, SIGNAL(triggered(QAction*)), this, SLOT(slotCClicked(QAction*)));
}

VCMenuBar::~VCMenuBar()
{
    m_pHeldWrites.reset();
    for (Tuple& tuple : m_tuples)
        DetachValue(tuple.sel, this);
    // Also the values of rebound entries, which the bar stays attached to.
    for (Observable* value : m_attached)
        value->Detach(this);
}

QAction* VCMenuBar::ActionAt(int place) const
{
    // A place outside the list holds no action, as a null one.
    return actions().value(place, nullptr);
}

int VCMenuBar::InsertItem(const QString& text, int id, QString path, QString inVal, QString outVal)
{
    if (QAction* action = addAction(text))
        action->setData(QVariant(id));
    const int place = actions().count() - 1;
    if (!SetSelection_ValuePath(place, path, inVal, outVal) && (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Failures))
        _Q_Trace(QStringLiteral("VCMenuBar::InsertItem: unable to connect to '%1'").arg(path), QString::fromLatin1(kUnit), __LINE__);
    return place;
}

int VCMenuBar::InsertItem(const QString& text, int id, int accel, QString path, QString inVal, QString outVal)
{
    Q_UNUSED(id)
    // No id: a click on this entry writes nothing.
    if (QAction* action = addAction(text))
        action->setShortcut(QKeySequence(accel, 0, 0, 0));
    const int place = actions().count() - 1;
    if (!SetSelection_ValuePath(place, path, inVal, outVal) && (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Failures)) {
        // The text has no place marker: the path is not shown in it.
        _Q_Trace(QStringLiteral("VCMenuBar::InsertItem: unable to connect to '%s'").arg(path), QString::fromLatin1(kUnit), __LINE__);
    }
    return place;
}

bool VCMenuBar::SetSelection_ValuePath(int id, QString path, QString inVal, QString outVal)
{
    return GuardedBinding(kUnit, __LINE__, [&] {
        if (!ActionAt(id))
            return false;
        NameBindingSlot(m_tuples[id].sel, this);
        values::ValueSelection* value = FindAndAttach<values::ValueSelection>(path, nullptr, this);
        if (!value)
            return m_tuples[id].sel != nullptr; // the former binding stays in force
        m_attached.insert(ObservableOf(value));
        Tuple& tuple = m_tuples[id];
        tuple.sel = value;
        tuple.inVal = inVal;
        tuple.outVal = outVal;
        if (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Assertions) {
            if (!tuple.sel->GetItem(tuple.inVal))
                _Q_assert(L"m_tuples[id].sel->GetItem(m_tuples[id].inVal)", L"controls/vandrel/vcmenubar", __LINE__);
            if (!tuple.outVal.isEmpty() && !tuple.sel->GetItem(tuple.outVal))
                _Q_assert(L"m_tuples[id].sel->GetItem(m_tuples[id].outVal)", L"controls/vandrel/vcmenubar", __LINE__);
        }
        const bool checked = tuple.sel->GetValueString() == tuple.inVal;
        if (QAction* action = ActionAt(id))
            action->setChecked(checked);
        return tuple.sel != nullptr;
    });
}

void VCMenuBar::Update(Observable* source, TChangeCode code)
{
    if (!source)
        return;
    if (code == ValueDestroyed) {
        // Forgotten without Detach, by every entry that holds it.
        m_attached.erase(source);
        for (Tuple& tuple : m_tuples)
            ForgetDestroyedValue(tuple.sel, source);
        return;
    }
    if (code == StateChanged) {
        for (Tuple& tuple : m_tuples) {
            if (tuple.sel && source == ObservableOf(tuple.sel)) {
                // The first entry of the value decides for the whole bar.
                ApplyValueState(tuple.sel, this);
                if (!tuple.sel) {
                    // Removed: detached, so no other entry of the value may keep it either.
                    m_attached.erase(source);
                    for (Tuple& other : m_tuples)
                        if (source == ObservableOf(other.sel))
                            other.sel = nullptr;
                }
                return;
            }
        }
        return;
    }
    if (code == ValueChanged) {
        for (auto it = m_tuples.cbegin(); it != m_tuples.cend(); ++it) {
            const Tuple& tuple = it.value();
            if (!tuple.sel || source != ObservableOf(tuple.sel))
                continue;
            if (QAction* action = ActionAt(it.key()))
                action->setChecked(tuple.sel->GetValueString() == tuple.inVal);
        }
    }
}

bool VCMenuBar::event(QEvent* event)
{
    // Null once this class's part is gone: the base class's destructor may still send events.
    if (!m_pHeldWrites)
        return QMenuBar::event(event);
    return m_pHeldWrites->Deliver(this, [this, event] { return QMenuBar::event(event); });
}

void VCMenuBar::slotCClicked(QAction* action)
{
    if (!action)
        return;
    bool ok = false;
    const int id = action->data().toInt(&ok);
    if (!ok)
        return;
    // Read now: the write may come after Qt is done with the event.
    QAction* atPlace = ActionAt(id);
    const bool checked = atPlace && atPlace->isChecked();
    m_pHeldWrites->Write([this, id, checked] { Pick(id, checked); });
}

void VCMenuBar::Pick(int id, bool checked)
{
    const auto found = m_tuples.find(id);
    if (found == m_tuples.end() || !found.value().sel)
        return;
    // One key holds one entry, so there is one write; nothing of the bar is touched after it.
    const Tuple& tuple = found.value();
    const QString name = checked ? tuple.inVal : tuple.outVal;
    tuple.sel->SetValueString(name, nullptr);
}
