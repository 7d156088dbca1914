#include <vandrel/vcundo.h>

#include <vandrel/binding/binding.h>
#include <vandrel/vcbutton.h>

#include <QTimerEvent>

namespace {

// A curved black arrow above a green bar. The '#' of the bar's border has no colour entry on purpose:
// the XPM reader draws it as it draws an unknown character.
const char* const undoXpm[] = {
    "16 16 3 1",
    "x c #000000",
    ". c None",
    "g c #00ff00",
    "................",
    ".......x........",
    ".......xx.......",
    ".....xxxxx......",
    "....xx.xx.......",
    "...xx..x........",
    "...xx......xx...",
    "...xx......xx...",
    "....xx....xx....",
    ".....xx..xx.....",
    "......xxxx......",
    "................",
    "################",
    "#gggggggggggggg#",
    "#gggggggggggggg#",
    "################",
};

// How long an undo may take to change the list before the button is given back.
const int watchdogMs = 5000;

} // namespace

VCUndo::VCUndo(QWidget* parent, const char* name)
    : QWidget(parent)
    , m_pButton(nullptr)
    , m_pRecordingsClient(nullptr)
    , m_pSelection(nullptr)
    , m_nTimerId(0)
{
    const QString objectName = QString::fromUtf8(name);
    setObjectName(objectName);
    m_pButton = new VCButton(this, objectName + QStringLiteral("_button"), false);
    m_pButton->SetDefaultPicture(undoXpm);
    // Picking an undo entry writes the private selection; that must not become an edit to undo.
    m_pButton->SetUndoRecordingEnabled(false);
    m_pButton->setToolTip(tr("Undo"));
    setFixedWidth(24);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

VCUndo::~VCUndo()
{
    Reset();
}

void VCUndo::SetUndoRecordings_BasePath(const QString& basePath)
{
    Reset();
    m_pRecordingsClient = new values::UndoRecordingsToValueClient(basePath);
    m_pRecordingsClient->AddUndoRecordingsListener(this);
    // Following the newest item keeps the rebuilt list's last item current, so the button's next
    // item, wrapping, is key 1: the newest recording.
    const QString path = values::UniqueValuesCreator::Instance().CreateValueSelection(true);
    m_pSelection = FindAndAttach<values::ValueSelection>(path, nullptr, this);
    UpdateRecordings();
    m_pButton->SetValueSelection_ValuePath(path);
    m_pButton->setEnabled(m_pSelection && m_pSelection->GetItemCount() >= 1);
}

void VCUndo::setEnabled(bool enabled)
{
    if (!enabled)
        m_pButton->setEnabled(false);
    else if (m_pSelection && m_pSelection->GetItemCount() >= 1)
        m_pButton->setEnabled(true);
}

void VCUndo::NotifyUndoRecordingsChanged()
{
    ResetTimer(m_nTimerId);
    UpdateRecordings();
}

void VCUndo::Update(Observable* source, TChangeCode code)
{
    if (!m_pSelection || source != ObservableOf(m_pSelection))
        return;
    switch (code) {
    case StateChanged:
        // Only removal matters: the button's enabled state follows the list, not the value's state.
        ApplyValueRemoval(m_pSelection, this);
        break;
    case ValueChanged: {
        const long key = m_pSelection->GetCurrentKey();
        if (key > 0)
            ExecuteUndo(static_cast<unsigned int>(key));
        break;
    }
    case ValueDestroyed:
        ForgetDestroyedValue(m_pSelection, source);
        break;
    default:
        break;
    }
}

void VCUndo::timerEvent(QTimerEvent* event)
{
    if (m_nTimerId <= 0 || event->timerId() != m_nTimerId) {
        QWidget::timerEvent(event);
        return;
    }
    // The undo changed nothing in the list: give the button back as the list stands, without a rebuild.
    ResetTimer(m_nTimerId);
    if (m_pSelection)
        m_pButton->setEnabled(m_pSelection->GetItemCount() >= 1);
}

bool VCUndo::ExecuteUndo(unsigned int key)
{
    if (!m_pRecordingsClient)
        return false;
    m_pButton->setEnabled(false); // no second undo while this one runs
    // A watchdog still running from an earlier undo is not ended: its id is replaced and its later
    // expiries are ignored.
    m_nTimerId = startTimer(watchdogMs, Qt::CoarseTimer);
    return m_pRecordingsClient->ExecuteUndo(key);
}

void VCUndo::Reset()
{
    ResetTimer(m_nTimerId);
    delete m_pRecordingsClient;
    m_pRecordingsClient = nullptr;
    if (m_pSelection) {
        values::ValueSelection* selection = m_pSelection;
        DetachValue(m_pSelection, this);
        // The tree owns the selection: removing it destroys it and tells the button to let go too. One
        // that is no longer found there is already on its way out.
        values::Tree* tree = values::Tree::Instance();
        const QString path = selection->GetPathName();
        if (tree && tree->Find(path) == selection)
            tree->Remove(path);
    }
}

void VCUndo::ResetTimer(int& timerId)
{
    if (timerId > 0) {
        killTimer(timerId);
        timerId = 0;
    }
}

void VCUndo::UpdateRecordings()
{
    if (!m_pRecordingsClient || !m_pSelection)
        return;
    const std::list<QString> descriptions = m_pRecordingsClient->GetUndoRecordingDescriptions();
    {
        // Observers hear of the rebuild once, as a new item list.
        values::ValueTransaction transaction = m_pSelection->CreateTransaction(ItemsChanged, nullptr);
        m_pSelection->ClearItems(nullptr);
        long key = 1;
        for (const QString& description : descriptions) {
            m_pSelection->AddItem(description, double(key), key, nullptr);
            ++key;
        }
    }
    // The rebuild may run inside an observer's call that removed the selection meanwhile.
    if (m_pSelection)
        m_pButton->setEnabled(m_pSelection->GetItemCount() >= 1);
}
