#include <vandrel/vccombobox.h>

#include <vandrel/binding/binding.h>
#include <vandrel/binding/multiselectionindex_p.h>
#include <vandrel/buddy_p.h>

#include <brevanbase/brevanbase.h>

#include <QAction>
#include <QFontMetrics>
#include <QHash>
#include <QIcon>
#include <QKeyEvent>
#include <QPalette>
#include <QPixmap>
#include <QPointer>
#include <QScopedValueRollback>
#include <QStandardItemModel>
#include <QStyle>
#include <QStyleFactory>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

const QString kSourceUnit = QStringLiteral("controls/vandrel/vccombobox");

// Entries of the second selection are told from those of the first by this offset of their ids.
constexpr int kSecondOffset = 10000;
// The id of the entries that AddMenuEntry() makes.
constexpr int kAdditionalEntryId = -32768;

const char* const buddyTriangleXpm[] = {
    "11 8 2 1",
    "b c #000000",
    ". c none",
    "...........",
    "...........",
    "..bbbbbbb..",
    "...bbbbb...",
    "....bbb....",
    ".....b.....",
    "...........",
    "...........",
};

} // namespace


// ---------------------------------------------------------------------------------------------------
// VCComboBoxClassic

struct VCComboBoxClassic::Index
{
    QHash<QString, int> firstRow; // the first row of each text
    int rows = -1;                // the row count the table was made for; -1: to be made
    vandrel::MultiSelectionIndex multi;
};

VCComboBoxClassic::VCComboBoxClassic(QWidget* parent, const char* name)
    : UndoRecordingControlBase()
    , QComboBox(parent)
    , m_pValueSelection(nullptr)
    , m_pMultiSelection(nullptr)
    , m_bAutoCommit(true)
    , m_pStyle(nullptr)
    , m_uiMaxContentLength(0)
    , m_uLastChange(0)
    , m_bDirty(false)
    , m_bItemToolTip(false)
    , m_bTakingOver(false)
    , m_nHeldPick(-1)
    , m_bPopupClosing(false)
    , m_pIndex(new Index)
    , m_pHeldWrites(new HeldWrites)
{
    connect(this, SIGNAL(activated(int)), this, SLOT(slotSet2Value(int)));
    const QString strName = QString::fromUtf8(name);
    setToolTip(strName);
    setEnabled(false);
    setObjectName(strName);
    setEditable(false);
    // A platform without this style gives null: the list keeps the application's style then.
    m_pStyle = QStyleFactory::create(QStringLiteral("windowsxp"));
    if (m_pStyle)
        setStyle(m_pStyle);
}

VCComboBoxClassic::~VCComboBoxClassic()
{
    DetachValue(m_pValueSelection, this);
    DetachValue(m_pMultiSelection, this);
    delete m_pStyle; // made by the factory for this list alone; the widget holds it by a guarded pointer
}

bool VCComboBoxClassic::SetValueSelection(values::ValueSelection* value)
{
    // The selection held before is let go of: a list deleted later would not detach from it, and its
    // next notification would reach a freed list.
    if (m_pValueSelection && m_pValueSelection != value)
        ObservableOf(m_pValueSelection)->Detach(this);
    m_pValueSelection = value;
    if (value) {
        ObservableOf(value)->Attach(this);
        const QPointer<VCComboBoxClassic> alive(this);
        RemoveStringsFromCombo();
        AddStrings2Combo(); // announces a new width, whose receiver may delete the list
        if (!alive)
            return true;
        SetItem();
    }
    setEnabled(false);
    SyncObserver(value, this);
    m_bDirty = false;
    return value != nullptr;
}

bool VCComboBoxClassic::SetValueSelection_ValuePath(const QString& path)
{
    DetachValue(m_pValueSelection, this);
    DetachValue(m_pMultiSelection, this);
    m_pIndex->multi.Reset();
    // A new value numbers its log from its own start: read it from there.
    m_uLastChange = 0;
    m_bDirty = false;
    if (values::ValueSelection* selection = FindAndAttach<values::ValueSelection>(path, nullptr, this)) {
        const QPointer<VCComboBoxClassic> alive(this);
        SetValueSelection(selection);
        if (alive)
            m_bDirty = false;
        return true;
    }
    m_pMultiSelection = FindAndAttach<values::IValueMultiSelection>(path, nullptr, this);
    if (m_pMultiSelection) {
        if (m_pMultiSelection->GetSelectionMode() == 1) {
            setEnabled(true);
            SyncObserver(m_pMultiSelection, this);
            m_bDirty = false;
            return true;
        }
        DetachValue(m_pMultiSelection, this);
    }
    setEnabled(false);
    return false;
}

values::ValueSelection* VCComboBoxClassic::GetValueSelection()
{
    return m_pValueSelection;
}

void VCComboBoxClassic::RebuildTextIndex()
{
    QHash<QString, int>& table = m_pIndex->firstRow;
    table.clear();
    const int rows = count();
    table.reserve(rows);
    for (int row = rows - 1; row >= 0; --row)
        table.insert(itemText(row), row); // from the end, so that the first row of a text stays
    m_pIndex->rows = rows;
}

void VCComboBoxClassic::setCurrentItem(QString text)
{
    // Rows by text from a table made with the list: the first row of a text, as a walk from row 0 finds.
    if (m_pIndex->rows != count())
        RebuildTextIndex();
    const auto firstRow = [this](const QString& wanted) {
        const int row = m_pIndex->firstRow.value(wanted, -1);
        return row >= 0 && itemText(row) == wanted ? row : -1;
    };
    int row = firstRow(text);
    if (!Orvi::isAsciiString(text) && m_pValueSelection) {
        // Either the translation or the text itself; the earlier row wins.
        const int translated = firstRow(TranslateItemName(m_pValueSelection, text));
        if (translated >= 0 && (row < 0 || translated < row))
            row = translated;
    }
    if (row >= 0)
        setCurrentIndex(row);
}

void VCComboBoxClassic::SetAutoCommit(bool autoCommit)
{
    m_bAutoCommit = autoCommit;
}

void VCComboBoxClassic::Commit()
{
    if (m_bAutoCommit)
        return;
    m_bAutoCommit = true;
    const QPointer<VCComboBoxClassic> alive(this);
    slotSet2Value(currentIndex());
    if (alive)
        m_bAutoCommit = false;
}

bool VCComboBoxClassic::GetDirty()
{
    return m_bDirty;
}

void VCComboBoxClassic::SetDirty(bool dirty)
{
    m_bDirty = dirty;
}

void VCComboBoxClassic::EnableItemToolTip(bool enable)
{
    m_bItemToolTip = enable;
}

unsigned int VCComboBoxClassic::GetMaximumContentLengthInPixel() const
{
    if (!m_pValueSelection)
        return 0;
    const int n = m_pValueSelection->GetItemCount();
    if (n < 1)
        return 10;
    const QFontMetrics metrics(font());
    int widest = 0;
    for (int i = 0; i < n; ++i) {
        if (const values::SelectionItem* item = m_pValueSelection->GetItemAt(i))
            widest = std::max(widest, metrics.boundingRect(item->GetName()).width());
    }
    return unsigned(widest + 10);
}

void VCComboBoxClassic::RemoveStringsFromCombo()
{
    // One clear() ends where removing row after row would, without moving the rows left each time.
    clear();
    m_pIndex->firstRow.clear();
    m_pIndex->rows = 0;
}

int VCComboBoxClassic::AddStrings2Combo()
{
    if (!m_pValueSelection)
        return AddMStrings2Combo();
    const QScopedValueRollback<bool> takingOver(m_bTakingOver, true);
    QString kept = currentText();
    if (values::SelectionItem* current = m_pValueSelection->GetCurrentItem())
        kept = current->GetName();
    RemoveStringsFromCombo();
    const int n = m_pValueSelection->GetItemCount();
    for (int i = 0; i < n; ++i) {
        values::SelectionItem* item = m_pValueSelection->GetItemAt(i);
        if (!item)
            continue;
        const QString text = TranslateItemName(m_pValueSelection, item->GetName());
        insertItem(count(), QIcon(), text, QVariant());
        if (m_bItemToolTip)
            setItemData(i, text, Qt::ToolTipRole); // by the index in the value, as the list always did
    }
    RebuildTextIndex();
    setCurrentItem(kept);
    const unsigned int width = GetMaximumContentLengthInPixel();
    if (width != m_uiMaxContentLength) {
        m_uiMaxContentLength = width;
        Q_EMIT MaximumContentLengthChanged(width);
    }
    return n;
}

int VCComboBoxClassic::AddMStrings2Combo()
{
    if (!m_pMultiSelection)
        return 0;
    const QScopedValueRollback<bool> takingOver(m_bTakingOver, true);
    RemoveStringsFromCombo();
    vandrel::MultiSelectionIndex& index = m_pIndex->multi;
    index.Begin(m_pMultiSelection);
    values::ValueBase* base = m_pMultiSelection->GetValueBase();
    int r = 0;
    if (m_pMultiSelection->HasNoneEntry()) {
        insertItem(count(), QIcon(), m_pMultiSelection->GetNoneEntryText(), QVariant());
        r = 1;
    }
    auto* rows = qobject_cast<QStandardItemModel*>(model());
    QString wanted;
    for (size_t i = 0; i < index.keys.size(); ++i) {
        values::IMultiSelectionItem* item = m_pMultiSelection->GetItemByKey(int(index.keys[i]));
        if (!item)
            continue;
        const QString text = TranslateItemName(base, item->GetName());
        insertItem(count(), QIcon(), text, QVariant());
        if (item->IsChecked()) {
            wanted = text; // the last checked item wins
            index.checked.insert(index.keys[i]);
        }
        if (rows) {
            if (QStandardItem* row = rows->item(int(i) + r))
                row->setEnabled(item->IsEnabled());
        }
    }
    RebuildTextIndex();
    setCurrentItem(wanted);
    return int(index.keys.size());
}

void VCComboBoxClassic::SetItem()
{
    if (!m_pValueSelection) {
        SetMItem();
        return;
    }
    if (values::SelectionItem* item = m_pValueSelection->GetCurrentItem())
        setCurrentItem(TranslateItemName(m_pValueSelection, item->GetName()));
}

void VCComboBoxClassic::SetMItem()
{
    if (!m_pMultiSelection)
        return;
    vandrel::MultiSelectionIndex& index = m_pIndex->multi;
    if (index.owner != m_pMultiSelection) {
        // Not made from this value yet: take its keys and marks now.
        index.Begin(m_pMultiSelection);
        for (unsigned int key : index.keys)
            index.SetChecked(key, m_pMultiSelection->IsItemChecked(int(key)));
    }
    // The lowest checked key is the first checked item of the sorted walk. With none checked, one blank
    // finds no row and leaves the shown one.
    values::IMultiSelectionItem* item =
        index.checked.empty() ? nullptr : m_pMultiSelection->GetItemByKey(int(*index.checked.begin()));
    setCurrentItem(item ? TranslateItemName(m_pMultiSelection->GetValueBase(), item->GetName()) : QStringLiteral(" "));
}

void VCComboBoxClassic::Update(Observable* source, TChangeCode code)
{
    if (code == StateChanged) {
        if (source == ObservableOf(m_pValueSelection)) {
            ApplyValueState(m_pValueSelection, this);
            return;
        }
        if (source == ObservableOf(m_pMultiSelection)) {
            ApplyValueState(m_pMultiSelection, this);
            if (!m_pMultiSelection)
                m_pIndex->multi.Reset();
            return;
        }
    }

    m_bDirty = true;

    if (code == ValueDestroyed) {
        ForgetDestroyedValue(m_pValueSelection, source);
        if (ForgetDestroyedValue(m_pMultiSelection, source))
            m_pIndex->multi.Reset();
        return;
    }

    if (m_pValueSelection && source == ObservableOf(m_pValueSelection)) {
        switch (code) {
        case ValueChanged:
            if (m_bAutoCommit)
                SetItem(); // with auto-commit off the user's pending pick stays shown
            break;
        case ItemsChanged:
        case ItemAdded:
            AddStrings2Combo();
            break;
        case ItemsCleared:
            RemoveStringsFromCombo();
            break;
        default:
            break;
        }
        return;
    }

    if (m_pMultiSelection && source == ObservableOf(m_pMultiSelection)) {
        if (code == ValueChanged) {
            std::vector<unsigned int> keys;
            const signed char scan = ScanChangeLogKeys(m_pMultiSelection->GetChangeLog(), m_uLastChange, 6, keys);
            if (scan == 1) {
                vandrel::MultiSelectionIndex& index = m_pIndex->multi;
                if (index.owner == m_pMultiSelection) {
                    for (unsigned int key : keys)
                        index.SetChecked(key, m_pMultiSelection->IsItemChecked(int(key)));
                }
                if (m_bAutoCommit)
                    SetMItem();
            } else if (scan == -1) {
                AddMStrings2Combo();
            }
        } else if (code == RangeChanged) {
            // What builds the list at binding: a multi-selection is sent no ItemsChanged.
            const QPointer<VCComboBoxClassic> alive(this);
            AddMStrings2Combo();
            if (alive)
                SetMItem();
        }
    }
}

void VCComboBoxClassic::slotSet2Value(int value)
{
    m_bDirty = true;
    // Rows come and go while the list takes over a value's items; no pick is made then.
    if (m_bTakingOver)
        return;
    if (sender() == this) {
        // Qt goes on with the list, its popup and the event after announcing a pick, and an observer
        // of the write may delete the list: the write waits until Qt is done. Inside the list's own
        // key and wheel handling that is when the event returns; a pick in the popup is written on
        // the next turn of the event loop. A pick announced from elsewhere is written at once.
        if (m_pHeldWrites->Holding()) {
            m_pHeldWrites->Write([this, value] { WritePick(value); });
        } else if (m_bPopupClosing) {
            m_nHeldPick = value;
            QTimer::singleShot(0, this, [this] {
                const int held = std::exchange(m_nHeldPick, -1);
                if (held >= 0)
                    WritePick(held);
            });
        } else {
            WritePick(value);
        }
        return;
    }
    WritePick(value);
}

void VCComboBoxClassic::hidePopup()
{
    QComboBox::hidePopup();
    if (!m_bPopupClosing) {
        m_bPopupClosing = true;
        QTimer::singleShot(0, this, [this] { m_bPopupClosing = false; });
    }
}

bool VCComboBoxClassic::event(QEvent* event)
{
    return m_pHeldWrites->Deliver(this, [this, event] { return QComboBox::event(event); });
}

void VCComboBoxClassic::WritePick(int value)
{
    if (m_pValueSelection && m_bAutoCommit) {
        if (!SurvivesWrite(this, [this, value] {
                GuiUndoRecordingHelper undo(this, QString());
                m_pValueSelection->SelectIndex(value, this);
            }))
            return;
    }
    if (m_pMultiSelection && m_bAutoCommit) {
        const int k = m_pMultiSelection->HasNoneEntry() ? value - 1 : value;
        const std::vector<unsigned int> keys = vandrel::MultiSelectionIndex::SortedKeys(m_pMultiSelection);
        // A row from code that names neither an item nor the none entry picks nothing.
        if (value < 0 || (k >= 0 && size_t(k) >= keys.size()))
            return;
        const QPointer<VCComboBoxClassic> alive(this);
        GuiUndoRecordingHelper undo(this, QString());
        m_pMultiSelection->UncheckAll(nullptr);
        // An observer of the first write may have deleted the list or taken the value away.
        if (!alive || !m_pMultiSelection)
            return;
        if (k >= 0)
            m_pMultiSelection->SetItemChecked(int(keys[size_t(k)]), true, nullptr);
    }
}

// ---------------------------------------------------------------------------------------------------
// VCComboBoxButtonStyle

struct VCComboBoxButtonStyle::Index : vandrel::MultiSelectionIndex
{
};

void SetComboBuddy(VCComboBoxButtonStyle* combo, ComboBuddy* buddy)
{
    if (combo)
        combo->m_pComboBuddy = buddy;
}

VCComboBoxButtonStyle::VCComboBoxButtonStyle(QWidget* parent, const char* name, bool keepAdditionalEnabled,
                                             bool toggleOnPress)
    : UndoRecordingControlBase()
    , QToolButton(parent)
    , m_pFirstSelection(nullptr)
    , m_pSecondSelection(nullptr)
    , m_pFirstMultiSelection(nullptr)
    , m_pSecondMultiSelection(nullptr)
    , m_uFirstLastChange(0)
    , m_uSecondLastChange(0)
    , m_pMenu(nullptr)
    , m_bBuddyMode(false)
    , m_nFirstCheckedKey(-1)
    , m_nSecondCheckedKey(-1)
    , m_pOneOfButtonCombo(nullptr)
    , m_color(Qt::black)
    , m_bKeepAdditionalEnabled(keepAdditionalEnabled)
    , m_bToggleOnPress(toggleOnPress)
    , m_bValuePartEnabled(true)
    , m_pComboBuddy(nullptr)
    , m_bClickAnimating(false)
    , m_nPicking(0)
    , m_pFirstIndex(new Index)
    , m_pSecondIndex(new Index)
{
    const QString strName = QString::fromUtf8(name);
    setObjectName(strName);
    setAutoRaise(true);
    connect(this, SIGNAL(pressed()), this, SLOT(slotOpenMenu()));
    setPopupMode(QToolButton::MenuButtonPopup);
    setFixedHeight(20);
    setEnabled(false);
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(strName);
}

VCComboBoxButtonStyle::~VCComboBoxButtonStyle()
{
    LetGo(m_pFirstSelection);
    LetGo(m_pSecondSelection);
    LetGo(m_pFirstMultiSelection);
    LetGo(m_pSecondMultiSelection);
    // The entries made here go with the widget, after this list: they must not look for it then.
    for (QAction* action : qAsConst(m_additionalActions))
        action->disconnect(this);
    if (m_pMenu && m_nPicking > 0) {
        // Deleted by an observer of a pick: the menu is still inside the triggering of that entry and
        // goes on with it once this returns, so it must outlive this button a little.
        m_pMenu->disconnect(this);
        m_pMenu->setParent(nullptr, m_pMenu->windowFlags());
        m_pMenu->deleteLater();
    }
}

bool VCComboBoxButtonStyle::Holds(const Observable* value) const
{
    return value
        && (value == ObservableOf(m_pFirstSelection) || value == ObservableOf(m_pSecondSelection)
            || value == ObservableOf(m_pFirstMultiSelection) || value == ObservableOf(m_pSecondMultiSelection));
}

template <class T>
void VCComboBoxButtonStyle::LetGo(T*& field)
{
    // The same value may stand in two roles: it stays attached while another role holds it.
    Observable* value = ObservableOf(field);
    field = nullptr;
    NameBindingSlot(field, this);
    if (value && !Holds(value))
        value->Detach(this);
}

bool VCComboBoxButtonStyle::SetValueSelection(values::ValueSelection* value)
{
    LetGo(m_pFirstSelection);
    m_pFirstSelection = value;
    if (value) {
        ObservableOf(value)->Attach(this);
        RebuildMenu();
    }
    return value != nullptr;
}

bool VCComboBoxButtonStyle::SetValueSelection_ValuePath(const QString& path)
{
    LetGo(m_pFirstSelection);
    LetGo(m_pFirstMultiSelection);
    m_pFirstIndex->Reset();
    // A new value numbers its log from its own start: read it from there.
    m_uFirstLastChange = 0;
    const QPointer<VCComboBoxButtonStyle> alive(this);
    m_pFirstSelection = FindAndAttach<values::ValueSelection>(path, nullptr, this);
    if (m_pFirstSelection) {
        RebuildMenu();
        setEnabled(true);
        SyncObserver(m_pFirstSelection, this);
        return true;
    }
    m_pFirstMultiSelection = FindAndAttach<values::IValueMultiSelection>(path, nullptr, this);
    if (m_pFirstMultiSelection) {
        RebuildMenu();
        setEnabled(true);
        SyncObserver(m_pFirstMultiSelection, this);
        return true;
    }
    setEnabled(false);
    return false;
}

bool VCComboBoxButtonStyle::SetSecondSelection_ValuePath(const QString& path)
{
    LetGo(m_pSecondSelection);
    LetGo(m_pSecondMultiSelection);
    m_pSecondIndex->Reset();
    m_uSecondLastChange = 0;
    m_pSecondSelection = FindAndAttach<values::ValueSelection>(path, nullptr, this);
    if (m_pSecondSelection) {
        RebuildMenu();
        SyncObserver(m_pSecondSelection, this);
        return true;
    }
    m_pSecondMultiSelection = FindAndAttach<values::IValueMultiSelection>(path, nullptr, this);
    if (m_pSecondMultiSelection) {
        RebuildMenu();
        SyncObserver(m_pSecondMultiSelection, this);
        return true;
    }
    return false;
}

void VCComboBoxButtonStyle::MakeMenu()
{
    m_pMenu = new ResortPopupMenu(this, (objectName() + QStringLiteral("Popup")).toUtf8().constData());
    connect(m_pMenu, SIGNAL(triggered(QAction*)), this, SLOT(slotSet2Value(QAction*)));
    connect(m_pMenu, SIGNAL(aboutToHide()), this, SLOT(slotMenuAbout2Hide()));
}

void VCComboBoxButtonStyle::RebuildMenu()
{
    if (!m_pMenu) {
        MakeMenu();
        setMenu(m_pMenu);
    } else {
        m_pMenu->RemoveAllEntries();
    }
    Add1stSelection2Combo();
    Add2ndSelection2Combo();
    AppendAdditionalMenu();
}

void VCComboBoxButtonStyle::AppendAdditionalMenu()
{
    if (m_additionalActions.isEmpty() || !m_pMenu)
        return;
    m_pMenu->addSeparator();
    for (QAction* action : qAsConst(m_additionalActions))
        m_pMenu->addAction(action);
}

ResortPopupMenu* VCComboBoxButtonStyle::GetPopup()
{
    return m_pMenu;
}

void VCComboBoxButtonStyle::AddAction(QAction* action)
{
    if (!action)
        return;
    if (m_additionalActions.isEmpty() && m_pMenu)
        m_pMenu->addSeparator();
    m_additionalActions.append(action);
    // Not owned: one that its owner deletes leaves the list, rather than go back into the next menu.
    connect(action, &QObject::destroyed, this, [this](QObject* gone) { m_additionalActions.removeAll(static_cast<QAction*>(gone)); });
    RebuildMenu();
}

void VCComboBoxButtonStyle::AddMenuEntry(QString text, QObject* receiver, const char* member)
{
    if (m_additionalActions.isEmpty() && m_pMenu)
        m_pMenu->addSeparator();
    auto* action = new QAction(text, this);
    action->setData(QVariant(kAdditionalEntryId));
    if (receiver && member && *member)
        connect(action, SIGNAL(triggered()), receiver, member);
    m_additionalActions.append(action);
    connect(action, &QObject::destroyed, this, [this](QObject* gone) { m_additionalActions.removeAll(static_cast<QAction*>(gone)); });
    RebuildMenu();
}

void VCComboBoxButtonStyle::setCurrentItem(QString text)
{
    if (text != this->text())
        setText(text);
}

void VCComboBoxButtonStyle::SetBuddyMode(bool buddyMode)
{
    m_bBuddyMode = buddyMode;
    if (buddyMode) {
        setFixedWidth(14);
        setFixedHeight(24);
        setIcon(QIcon(QPixmap(buddyTriangleXpm)));
    }
    update();
}

void VCComboBoxButtonStyle::SetColor(QColor& color)
{
    m_color = color;
    setAutoFillBackground(true);
    setPalette(QPalette(m_color));
}

void VCComboBoxButtonStyle::SetOneOfButtonCombo(VCOneOfButtonCombo* combo)
{
    m_pOneOfButtonCombo = combo;
}

int VCComboBoxButtonStyle::Add1stSelection2Combo()
{
    if (!m_pFirstSelection)
        return Add1stMSelection2Combo();
    const bool entriesEnabled = m_pFirstSelection->GetState() != Disabled;
    QString kept = text();
    if (values::SelectionItem* current = m_pFirstSelection->GetCurrentItem()) {
        kept = current->GetName();
        m_nFirstCheckedKey = int(current->GetKey());
    }
    if (!m_pMenu)
        MakeMenu();
    const bool trace = !m_pComboBuddy && (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Details);
    const int n = m_pFirstSelection->GetItemCount();
    for (int i = 0; i < n; ++i) {
        values::SelectionItem* item = m_pFirstSelection->GetItemAt(i);
        if (!item)
            continue;
        const QString name = TranslateItemName(m_pFirstSelection, item->GetName());
        if (m_pComboBuddy) {
            if (!m_pComboBuddy->isValueValid(item->GetName()))
                continue;
        } else if (trace) {
            _Q_Trace(QStringLiteral("VCComboBoxButtonStyle::AddStrings2Combo()") + name
                         + QStringLiteral("%0 %1").arg(item->GetKey()).arg(item->GetValue(), 0, 'g'),
                     kSourceUnit, __LINE__);
        }
        const int key = int(item->GetKey());
        m_pMenu->insertItem(name, key, key)->setEnabled(entriesEnabled);
    }
    if (!kept.isEmpty())
        setCurrentItem(kept); // the raw name, until SetCurrentItem() puts the translated one
    else
        m_nFirstCheckedKey = -1;
    SetCurrentItem();
    return n;
}

int VCComboBoxButtonStyle::Add2ndSelection2Combo()
{
    if (m_pSecondMultiSelection)
        return Add2ndMSelection2Combo();
    if (!m_pSecondSelection)
        return 0;
    if (m_pMenu)
        m_pMenu->addSeparator();
    const bool entriesEnabled = m_pSecondSelection->GetState() != Disabled;
    QString kept = text();
    if (values::SelectionItem* current = m_pSecondSelection->GetCurrentItem())
        kept = current->GetName();
    if (!m_pMenu)
        MakeMenu();
    const int n = m_pSecondSelection->GetItemCount();
    for (int i = 0; i < n; ++i) {
        values::SelectionItem* item = m_pSecondSelection->GetItemAt(i);
        if (!item)
            continue;
        const QString name = TranslateItemName(m_pSecondSelection, item->GetName());
        const int id = int(item->GetKey()) + kSecondOffset;
        m_pMenu->insertItem(name, id, id)->setEnabled(entriesEnabled);
    }
    if (!kept.isEmpty())
        setCurrentItem(kept);
    if (n > 0)
        setEnabled(true);
    SetMenuSelectionItem();
    return n;
}

int VCComboBoxButtonStyle::Add1stMSelection2Combo()
{
    if (!m_pFirstMultiSelection)
        return 0;
    values::ValueBase* base = m_pFirstMultiSelection->GetValueBase();
    const bool entriesEnabled = base->GetState() != Disabled;
    if (!m_pMenu)
        MakeMenu();
    const std::vector<unsigned int> keys = vandrel::MultiSelectionIndex::SortedKeys(m_pFirstMultiSelection);
    for (unsigned int key : keys) {
        values::IMultiSelectionItem* item = m_pFirstMultiSelection->GetItemByKey(int(key));
        if (!item)
            continue;
        QAction* entry = m_pMenu->insertItem(TranslateItemName(base, item->GetName()), int(key), int(key));
        entry->setEnabled(entriesEnabled && item->IsEnabled());
        entry->setCheckable(true);
        entry->setChecked(item->IsChecked());
    }
    m_nFirstCheckedKey = -1;
    SetCurrentItem();
    return int(keys.size());
}

int VCComboBoxButtonStyle::Add2ndMSelection2Combo()
{
    if (!m_pSecondMultiSelection)
        return 0;
    if (m_pMenu)
        m_pMenu->addSeparator();
    values::ValueBase* base = m_pSecondMultiSelection->GetValueBase();
    const bool entriesEnabled = base->GetState() != Disabled;
    if (!m_pMenu)
        MakeMenu();
    const std::vector<unsigned int> keys = vandrel::MultiSelectionIndex::SortedKeys(m_pSecondMultiSelection);
    for (unsigned int key : keys) {
        values::IMultiSelectionItem* item = m_pSecondMultiSelection->GetItemByKey(int(key));
        if (!item)
            continue;
        const int id = int(key) + kSecondOffset;
        QAction* entry = m_pMenu->insertItem(TranslateItemName(base, item->GetName()), id, id);
        entry->setEnabled(entriesEnabled && item->IsEnabled());
        entry->setCheckable(true);
        entry->setChecked(item->IsChecked());
    }
    SetMenuSelectionItem();
    setEnabled(!keys.empty());
    return int(keys.size());
}

void VCComboBoxButtonStyle::SetCurrentItem()
{
    if (m_pFirstSelection) {
        values::SelectionItem* item = m_pFirstSelection->GetCurrentItem();
        if (!item)
            return;
        const QString name = TranslateItemName(m_pFirstSelection, item->GetName());
        setCurrentItem(name);
        if (!m_pMenu)
            return;
        if (m_nFirstCheckedKey != -1)
            m_pMenu->setItemChecked(m_nFirstCheckedKey, false);
        const int key = int(item->GetKey());
        QAction* entry = m_pMenu->findItem(key);
        // An entry left out by the buddy, or of another text, stays unchecked.
        if (entry && entry->text() == name) {
            m_nFirstCheckedKey = key;
            m_pMenu->setItemChecked(key, true);
        }
        return;
    }
    if (!m_pFirstMultiSelection)
        return;
    // The whole walk, which also makes the index that a change of check marks is applied to.
    Index& index = *m_pFirstIndex;
    index.Begin(m_pFirstMultiSelection);
    for (unsigned int key : index.keys) {
        values::IMultiSelectionItem* item = m_pFirstMultiSelection->GetItemByKey(int(key));
        const bool checked = item && item->IsChecked();
        index.SetChecked(key, checked);
        if (m_pMenu)
            m_pMenu->setItemChecked(int(key), checked);
    }
    ShowFirstMultiText();
}

void VCComboBoxButtonStyle::ShowFirstMultiText()
{
    // One checked: its name; more: the text for several; none: the none text. The lowest checked key
    // is the first checked one of the sorted walk.
    const Index& index = *m_pFirstIndex;
    values::ValueBase* base = m_pFirstMultiSelection->GetValueBase();
    QString shown;
    if (index.checked.size() == 1) {
        values::IMultiSelectionItem* item = m_pFirstMultiSelection->GetItemByKey(int(*index.checked.begin()));
        shown = item ? TranslateItemName(base, item->GetName()) : QString();
    } else if (index.checked.size() > 1) {
        shown = TranslateItemName(base, m_pFirstMultiSelection->GetSeveralEntryText());
    } else {
        shown = TranslateItemName(base, m_pFirstMultiSelection->GetNoneEntryText());
    }
    setCurrentItem(shown);
}

void VCComboBoxButtonStyle::SetMenuSelectionItem()
{
    if (m_pSecondSelection) {
        values::SelectionItem* item = m_pSecondSelection->GetCurrentItem();
        if (!item || !m_pMenu)
            return;
        if (m_nSecondCheckedKey != -1)
            m_pMenu->setItemChecked(m_nSecondCheckedKey + kSecondOffset, false);
        m_nSecondCheckedKey = int(item->GetKey());
        m_pMenu->setItemChecked(m_nSecondCheckedKey + kSecondOffset, true);
        return;
    }
    if (!m_pSecondMultiSelection)
        return;
    // Checked by place, though filled by key: the two agree where the keys count 0, 1, 2 and so on.
    Index& index = *m_pSecondIndex;
    index.Begin(m_pSecondMultiSelection);
    for (size_t i = 0; i < index.keys.size(); ++i) {
        values::IMultiSelectionItem* item = m_pSecondMultiSelection->GetItemByKey(int(index.keys[i]));
        const bool checked = item && item->IsChecked();
        index.SetChecked(index.keys[i], checked);
        if (m_pMenu)
            m_pMenu->setItemChecked(int(i) + kSecondOffset, checked);
    }
}

void VCComboBoxButtonStyle::ApplyFirstChecks(const std::vector<unsigned int>& keys)
{
    Index& index = *m_pFirstIndex;
    if (m_pFirstSelection || index.owner != m_pFirstMultiSelection) {
        SetCurrentItem();
        return;
    }
    for (unsigned int key : keys) {
        if (index.PlaceOf(key) < 0) { // not among the items the index was made from: walk them all
            SetCurrentItem();
            return;
        }
    }
    for (unsigned int key : keys) {
        const bool checked = m_pFirstMultiSelection->IsItemChecked(int(key));
        index.SetChecked(key, checked);
        if (m_pMenu)
            m_pMenu->setItemChecked(int(key), checked);
    }
    ShowFirstMultiText();
}

void VCComboBoxButtonStyle::ApplySecondChecks(const std::vector<unsigned int>& keys)
{
    Index& index = *m_pSecondIndex;
    if (m_pSecondSelection || index.owner != m_pSecondMultiSelection) {
        SetMenuSelectionItem();
        return;
    }
    for (unsigned int key : keys) {
        if (index.PlaceOf(key) < 0) {
            SetMenuSelectionItem();
            return;
        }
    }
    for (unsigned int key : keys) {
        const bool checked = m_pSecondMultiSelection->IsItemChecked(int(key));
        index.SetChecked(key, checked);
        if (m_pMenu)
            m_pMenu->setItemChecked(index.PlaceOf(key) + kSecondOffset, checked);
    }
}

void VCComboBoxButtonStyle::setEnabled(bool bEnable)
{
    m_bValuePartEnabled = true;
    if (!bEnable && m_pMenu && m_bKeepAdditionalEnabled && !m_additionalActions.isEmpty()) {
        // The button stays live, and in its menu only the additional entries.
        m_pMenu->setEnabled(true);
        m_pMenu->EnableAllEntries(false);
        for (QAction* action : qAsConst(m_additionalActions))
            m_pMenu->EnableEntry(action->text(), true);
        m_bValuePartEnabled = false;
        return;
    }
    if (m_pMenu)
        m_pMenu->setEnabled(bEnable);
    QWidget::setEnabled(bEnable);
}

void VCComboBoxButtonStyle::Update(Observable* source, TChangeCode code)
{
    if (code == StateChanged) {
        const bool selection = source == ObservableOf(m_pFirstSelection) || source == ObservableOf(m_pSecondSelection);
        const bool multi = source == ObservableOf(m_pFirstMultiSelection) || source == ObservableOf(m_pSecondMultiSelection);
        if (!selection && !multi)
            return;
        // Every role of the value lets go of it when it is removed, so that none is left unattached.
        if (source == ObservableOf(m_pFirstSelection))
            ApplyValueRemoval(m_pFirstSelection, this);
        if (source == ObservableOf(m_pSecondSelection))
            ApplyValueRemoval(m_pSecondSelection, this);
        if (source == ObservableOf(m_pFirstMultiSelection))
            ApplyValueRemoval(m_pFirstMultiSelection, this);
        if (source == ObservableOf(m_pSecondMultiSelection))
            ApplyValueRemoval(m_pSecondMultiSelection, this);
        if (!selection)
            return;
        auto* base = dynamic_cast<values::ValueBase*>(source);
        if (!base || base->GetState() == Removed)
            return;
        RebuildMenu(); // renews the entries' enabled flags
        return;
    }

    if (code == ValueDestroyed) {
        // Forgotten without Detach; no pointer may outlive the value.
        ForgetDestroyedValue(m_pFirstSelection, source);
        ForgetDestroyedValue(m_pSecondSelection, source);
        ForgetDestroyedValue(m_pFirstMultiSelection, source);
        ForgetDestroyedValue(m_pSecondMultiSelection, source);
        return;
    }

    if (code != ValueChanged) {
        RebuildMenu();
        return;
    }

    const QPointer<VCComboBoxButtonStyle> alive(this);
    bool known = false;
    if (m_pFirstSelection && source == ObservableOf(m_pFirstSelection)) {
        known = true;
        SetCurrentItem();
        Q_EMIT SignalSelectionChangedByUserInput();
        if (!alive)
            return;
    }
    if (m_pSecondSelection && source == ObservableOf(m_pSecondSelection)) {
        known = true;
        Q_EMIT SignalSelectionChangedByUserInput();
        if (!alive)
            return;
        SetMenuSelectionItem();
    }
    std::vector<unsigned int> keys;
    if (m_pFirstMultiSelection && source == ObservableOf(m_pFirstMultiSelection)) {
        known = true;
        // Only check marks changed: they move; anything else, or nothing new, rebuilds.
        if (ScanChangeLogKeys(m_pFirstMultiSelection->GetChangeLog(), m_uFirstLastChange, 6, keys) == 1)
            ApplyFirstChecks(keys);
        else
            RebuildMenu();
    }
    if (m_pSecondMultiSelection && source == ObservableOf(m_pSecondMultiSelection)) {
        known = true;
        if (ScanChangeLogKeys(m_pSecondMultiSelection->GetChangeLog(), m_uSecondLastChange, 6, keys) == 1)
            ApplySecondChecks(keys);
        else
            RebuildMenu();
    }
    if (!known)
        RebuildMenu();
}

bool VCComboBoxButtonStyle::StepFirstSelection(bool up)
{
    if (!m_pFirstSelection)
        return true;
    return SurvivesWrite(this, [this, up] {
        GuiUndoRecordingHelper undo(this, QString());
        m_pFirstSelection->SelectNext(up, nullptr);
    });
}

void VCComboBoxButtonStyle::slotSet2Value(QAction* pAction)
{
    if (!pAction || m_additionalActions.contains(pAction))
        return; // an additional entry does its work through its own connection
    // A write may rebuild the menu, which deletes the entry: what is read of it is read while it lives.
    const QPointer<QAction> action(pAction);
    const int id = pAction->data().toInt();
    const QString text = pAction->text();
    const bool checkedAtPick = pAction->isChecked();
    const auto checked = [&action, checkedAtPick] { return action ? action->isChecked() : checkedAtPick; };
    bool handled = false;
    bool same = false;
    // Each write has its own recording and no originator, so the button hears of it as everyone does.
    // Deleted by an observer of a write, the button stops there; see the destructor for its menu.
    ++m_nPicking;
    const QPointer<VCComboBoxButtonStyle> alive(this);
    const auto write = [this, &alive](auto&& body) {
        {
            GuiUndoRecordingHelper undo(this, QString());
            body();
        }
        if (!alive)
            return false;
        return true;
    };
    const auto done = [this, &alive] {
        if (alive)
            --m_nPicking;
    };

    if (m_pSecondMultiSelection) {
        values::IMultiSelectionItem* item = m_pSecondMultiSelection->GetItemByKey(id - kSecondOffset);
        if (item && item->GetName() == text) {
            const bool on = checked();
            if (!write([&] { m_pSecondMultiSelection->SetItemChecked(id - kSecondOffset, on, nullptr); }))
                return;
            handled = true;
        }
    }
    if (m_pFirstMultiSelection && m_pFirstMultiSelection->GetItemByKey(id)) {
        const bool on = checked();
        if (!write([&] { m_pFirstMultiSelection->SetItemChecked(id, on, nullptr); }))
            return;
        handled = true;
    }
    if (m_pSecondSelection && !handled) {
        values::SelectionItem* item = m_pSecondSelection->GetItemAt(id - kSecondOffset);
        if (item && item->GetName() == text) {
            same = m_pSecondSelection->GetCurrentKey() == id - kSecondOffset;
            if (!write([&] { m_pSecondSelection->SelectKey(id - kSecondOffset, nullptr); }))
                return;
            handled = true;
        }
    }
    if (m_pFirstSelection && !handled) {
        same = m_pFirstSelection->GetCurrentKey() == id;
        if (!write([&] { m_pFirstSelection->SelectKey(id, nullptr); }))
            return;
    }
    done();
    // A click on the current entry must not clear its mark.
    if (same && action && action->isCheckable() && !action->isChecked())
        action->setChecked(true);
    if (m_pComboBuddy && m_pFirstSelection)
        m_pComboBuddy->NewValueFromCombo(m_pFirstSelection->GetValueString());
}

void VCComboBoxButtonStyle::slotOpenMenu()
{
    if (m_bClickAnimating) {
        // A key's animated click goes on with the button after pressed(); what may delete the button
        // (a pick, a flip) comes once that has returned.
        QMetaObject::invokeMethod(this, "slotOpenMenu", Qt::QueuedConnection);
        return;
    }
    if (m_bToggleOnPress && m_pFirstSelection && m_pFirstSelection->GetItemCount() == 2) {
        StepFirstSelection(false);
        return;
    }
    showMenu();
}

void VCComboBoxButtonStyle::slotMenuAbout2Hide()
{
    setChecked(false);
    update();
}

void VCComboBoxButtonStyle::keyPressEvent(QKeyEvent* event)
{
    if (m_pFirstSelection && m_pFirstSelection->GetState() != Disabled) {
        switch (event->key()) {
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter: {
            const QScopedValueRollback<bool> animating(m_bClickAnimating, true);
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
            animateClick();
#else
            animateClick(100);
#endif
            return;
        }
        case Qt::Key_Up:
            StepFirstSelection(true);
            return;
        case Qt::Key_Down:
            StepFirstSelection(false);
            return;
        default:
            break;
        }
    }
    QAbstractButton::keyPressEvent(event);
}

void VCComboBoxButtonStyle::wheelEvent(QWheelEvent* event)
{
    if (!isEnabled() || !m_pFirstSelection || m_pFirstSelection->GetState() == Disabled || !m_bValuePartEnabled)
        return; // left as it came: the base class doesn't see it either
    const QPoint angle = event->angleDelta();
    const int delta = std::abs(angle.x()) > std::abs(angle.y()) ? angle.x() : angle.y();
    event->accept();
    StepFirstSelection(delta > 0);
}
