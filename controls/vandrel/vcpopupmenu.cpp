#include <vandrel/vcpopupmenu.h>

#include <vandrel/binding/binding.h>
#include <vandrel/binding/multiselectionindex_p.h>
#include <vandrel/menuentries_p.h>

#include <brevanbase/brevanbase.h>

#include <QAction>
#include <QPointer>

#include <vector>

namespace {

const char* const kUnit = "controls/vandrel/vcpopupmenu";

} // namespace

// What a generated menu keeps between rebuilds: the keys by place, and how far the journal was read.
struct VCPopupMenu::Generated
{
    vandrel::MultiSelectionIndex index;
    unsigned long long nextChange = 0;
    int entries = -1; // the menu's entry count right after the rebuild; -1: no generated menu stands
    std::set<int> toggled; // places of picked entries whose marks Qt toggled and no rebuild has reset since
};

VCPopupMenu::VCPopupMenu(QWidget* parent, const char* name)
    : ResortPopupMenu(parent, name)
    , m_pValue1Selection(nullptr)
    , m_pGenerated(new Generated)
    , m_pHeldWrites(new HeldWrites)
    , m_pActionWatch(new QObject)
    , m_nPicking(0)
{
    connect(this, SIGNAL(triggered(QAction*)), this, SLOT(slotCClicked(QAction*)));
}

VCPopupMenu::~VCPopupMenu()
{
    // An open menu closes while all of it lives: Qt's closing of a popup sends it events, which this
    // class handles, and the base class's destructor would close it after this class's parts are gone.
    if (isVisible())
        hide();
    m_pHeldWrites.reset();
    // The entries go with the widget, after the tuples: they must not look for them then.
    m_pActionWatch.reset();
    for (Tuple& tuple : m_tuples)
        DetachValue(tuple.m_sel, this);
    DetachValue(m_pValue1Selection, this);
    // Also the values the menu stays attached to without a tuple (a rebound or wiped entry): they
    // would otherwise call a deleted menu.
    for (Observable* value : m_attached)
        value->Detach(this);
}

void VCPopupMenu::Hold(Observable* value)
{
    if (value)
        m_attached.insert(value);
}

int VCPopupMenu::InsertItem(const QString& text, int id, const QKeySequence& key, QString path, QString inVal,
                            QString outVal)
{
    auto* action = new QAction(text, this);
    action->setData(QVariant(id));
    action->setCheckable(true);
    if (!key.isEmpty())
        action->setShortcut(key);
    // An entry deleted by the application leaves its tuple without an action, not with a dangling one.
    // Watched through an object of its own: the menu drops its connections to an entry that leaves it.
    connect(action, &QObject::destroyed, m_pActionWatch.get(), [this](QObject* gone) {
        for (Tuple& tuple : m_tuples)
            if (tuple.m_action == gone)
                tuple.m_action = nullptr;
    });
    Tuple& tuple = m_tuples[id];
    tuple = Tuple();
    tuple.m_inVal = inVal;
    tuple.m_outVal = outVal;
    tuple.m_action = action;
    addAction(action);
    if (!SetSelection_ValuePath(id, path, inVal, outVal) && (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Failures)) {
        // The text has no place marker: the path is not shown in it.
        _Q_Trace(QStringLiteral("VCPopupMenu::InsertItem: unable to connect to '%s'").arg(path), QString::fromLatin1(kUnit),
                 __LINE__);
    }
    return id;
}

int VCPopupMenu::InsertItem(const QString& text, int id, QString path, QString inVal, QString outVal)
{
    return InsertItem(text, id, QKeySequence(), path, inVal, outVal);
}

bool VCPopupMenu::SetSelection_ValuePath(int id, QString path, QString inVal, QString outVal)
{
    Q_UNUSED(inVal)
    Q_UNUSED(outVal)
    return GuardedBinding(kUnit, __LINE__, [&] {
        values::ValueSelection* value = FindAndAttach<values::ValueSelection>(path, nullptr, this);
        if (!value)
            return false;
        Hold(ObservableOf(value));
        const auto found = m_tuples.find(id);
        if (found == m_tuples.end())
            return true;
        Tuple& tuple = found.value();
        tuple.m_sel = value;
        if (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Assertions) {
            if (!tuple.m_sel->GetItem(tuple.m_inVal))
                _Q_assert(L"m_tuples[id].m_sel->GetItem(m_tuples[id].m_inVal)", L"controls/vandrel/vcpopupmenu", __LINE__);
            if (!tuple.m_outVal.isEmpty() && !tuple.m_sel->GetItem(tuple.m_outVal))
                _Q_assert(L"m_tuples[id].m_sel->GetItem(m_tuples[id].m_outVal)", L"controls/vandrel/vcpopupmenu", __LINE__);
        }
        if (tuple.m_action)
            tuple.m_action->setChecked(tuple.m_sel->GetValueString() == tuple.m_inVal);
        return true;
    });
}

bool VCPopupMenu::SetValue1Selection_String_ValuePath(const QString& path)
{
    if (m_pValue1Selection)
        m_attached.erase(ObservableOf(m_pValue1Selection));
    DetachValue(m_pValue1Selection, this);
    m_pValue1Selection = FindAndAttach<StringMultiSelection>(path, nullptr, this);
    if (!m_pValue1Selection)
        return false;
    Hold(ObservableOf(m_pValue1Selection));
    AddMStrings2Menu();
    return true;
}

int VCPopupMenu::AddMStrings2Menu()
{
    // The values of the wiped tuples stay attached (and are detached when the menu goes).
    m_tuples.clear();
    vandrel::ClearMenu(this, m_nPicking > 0);
    Generated& generated = *m_pGenerated;
    generated.index.Reset();
    generated.entries = -1;
    generated.toggled.clear();
    if (!m_pValue1Selection)
        return 0;
    generated.index.Begin(m_pValue1Selection);
    const std::vector<unsigned int>& keys = generated.index.keys;
    if (m_pValue1Selection->HasNoneEntry())
        insertItem(m_pValue1Selection->GetNoneEntryText(), -1, -1);
    values::ValueBase* base = m_pValue1Selection->GetValueBase();
    for (size_t i = 0; i < keys.size(); ++i) {
        values::IMultiSelectionItem* item = m_pValue1Selection->GetItemByKey(int(keys[i]));
        if (!item)
            continue;
        QAction* action = insertItem(TranslateItemName(base, item->GetName()), int(i), -1);
        action->setCheckable(true);
        action->setChecked(item->IsChecked());
        action->setEnabled(item->IsEnabled());
    }
    // The menu now shows everything the journal holds.
    if (const values::MultiSelectionChangeLog* log = m_pValue1Selection->GetChangeLog())
        generated.nextChange = log->GetNextSequence();
    generated.entries = actions().size();
    return int(keys.size());
}

void VCPopupMenu::ApplyCheckMarks()
{
    // Check marks alone only set the marks of the entries they name; the result is that of a rebuild.
    // A rebuild also wipes switch entries and the application's own, so it stays whenever there are any.
    Generated& generated = *m_pGenerated;
    std::vector<unsigned int> keys;
    bool onlyMarks = generated.entries == actions().size() && m_tuples.empty()
        && generated.index.owner == m_pValue1Selection
        && ScanChangeLogKeys(m_pValue1Selection->GetChangeLog(), generated.nextChange, 6, keys) == 1;
    if (onlyMarks) {
        for (unsigned int key : keys) {
            const int place = generated.index.PlaceOf(key);
            QAction* action = place >= 0 ? findItem(place) : nullptr;
            if (!action) {
                onlyMarks = false;
                break;
            }
            action->setChecked(m_pValue1Selection->IsItemChecked(int(key)));
        }
        // Qt toggled the marks of picked entries itself; a rebuild would show the items' marks.
        for (int place : generated.toggled) {
            QAction* action = findItem(place);
            if (onlyMarks && action && size_t(place) < generated.index.keys.size())
                action->setChecked(m_pValue1Selection->IsItemChecked(int(generated.index.keys[size_t(place)])));
        }
        if (onlyMarks)
            generated.toggled.clear();
    }
    if (!onlyMarks)
        AddMStrings2Menu();
}

void VCPopupMenu::Update(Observable* source, TChangeCode code)
{
    if (code == ValueDestroyed) {
        // Forgotten without Detach, by every tuple that holds it.
        m_attached.erase(source);
        for (Tuple& tuple : m_tuples)
            ForgetDestroyedValue(tuple.m_sel, source);
        if (ForgetDestroyedValue(m_pValue1Selection, source))
            m_pGenerated->index.Reset();
        return;
    }
    if (m_pValue1Selection && source == ObservableOf(m_pValue1Selection)) {
        if (code == StateChanged) {
            ApplyValueState(m_pValue1Selection, this);
            if (!m_pValue1Selection) {
                m_attached.erase(source);
                m_pGenerated->index.Reset();
            }
        } else if (code == ValueChanged) {
            ApplyCheckMarks();
        } else {
            AddMStrings2Menu();
        }
        return;
    }
    if (!source)
        return;
    if (code == StateChanged) {
        // On the whole menu, for every tuple of the value; Removed detaches and clears each of them.
        bool matched = false;
        for (Tuple& tuple : m_tuples) {
            if (tuple.m_sel && source == ObservableOf(tuple.m_sel)) {
                matched = true;
                ApplyValueState(tuple.m_sel, this);
            }
        }
        if (matched && !m_attached.empty()) {
            auto* base = dynamic_cast<values::ValueBase*>(source);
            if (base && base->GetState() == Removed)
                m_attached.erase(source);
        }
        return;
    }
    if (code == ValueChanged) {
        for (Tuple& tuple : m_tuples) {
            if (tuple.m_sel && source == ObservableOf(tuple.m_sel) && tuple.m_action)
                tuple.m_action->setChecked(tuple.m_sel->GetValueString() == tuple.m_inVal);
        }
    }
}

bool VCPopupMenu::event(QEvent* event)
{
    // Null once this class's part is gone: the base class's destructor may still send events.
    if (!m_pHeldWrites)
        return ResortPopupMenu::event(event);
    return m_pHeldWrites->Deliver(this, [this, event] { return ResortPopupMenu::event(event); });
}

void VCPopupMenu::slotCClicked(QAction* action)
{
    if (!action)
        return;
    const int id = action->data().toInt();
    // The new state after the click, read now: the write may come after Qt is done with the event.
    const bool checked = action->isChecked();
    m_pHeldWrites->Write([this, id, checked] { Pick(id, checked); });
}

void VCPopupMenu::Pick(int id, bool checked)
{
    const QPointer<VCPopupMenu> alive(this);
    ++m_nPicking;
    const auto found = m_tuples.find(id);
    if (found == m_tuples.end()) {
        // A generated entry: its id goes on as the key.
        if (m_pValue1Selection) {
            if (id >= 0)
                m_pGenerated->toggled.insert(id);
            m_pValue1Selection->SetItemChecked(id, true, nullptr);
        }
    } else if (values::ValueSelection* value = found.value().m_sel) {
        // With no originator: the mark comes back through Update from what the value took. A copy of
        // the name: an observer of the write may regenerate the menu and wipe the tuple.
        const QString name = checked ? found.value().m_inVal : found.value().m_outVal;
        value->SetValueString(name, nullptr);
    }
    if (alive)
        --m_nPicking;
}
