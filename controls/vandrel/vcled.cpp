#include <vandrel/vcled.h>

#include <vandrel/binding/binding.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPixmapCache>

namespace {

// One disc for every lamp: a rim colour a, a highlight b with a bright centre c up and to the left.
#define VANDREL_LED_DISC(pad)                                                                              \
    pad "..aaaa.." pad, pad ".aaaaaa." pad, pad "aabbaaaa" pad, pad "aabcaaaa" pad, pad "aaaaaaaa" pad,     \
        pad "aaaaaaaa" pad, pad ".aaaaaa." pad, pad "..aaaa.." pad
#define VANDREL_LED_SMALL(a, b, c)                                                                         \
    {                                                                                                      \
        "8 8 4 1", ". c None", "a c " a, "b c " b, "c c " c, VANDREL_LED_DISC("")                           \
    }
#define VANDREL_LED_LARGE(a, b, c)                                                                         \
    {                                                                                                      \
        "16 16 4 1", ". c None", "a c " a, "b c " b, "c c " c, "................", "................",      \
            "................", "................", VANDREL_LED_DISC("...."), "................",            \
            "................", "................", "................"                                     \
    }

const char* const kTrueXpm[] = VANDREL_LED_SMALL("#820000", "#ff0000", "yellow");
const char* const kFalseXpm[] = VANDREL_LED_SMALL("darkgray", "#bbbbbb", "#dddddd");
const char* const kState0Xpm[] = VANDREL_LED_LARGE("darkgray", "#bbbbbb", "#dddddd");
const char* const kState1Xpm[] = VANDREL_LED_LARGE("#820000", "#ff0000", "yellow");
const char* const kState2Xpm[] = VANDREL_LED_LARGE("orange", "orange", "yellow");
const char* const kState3Xpm[] = VANDREL_LED_LARGE("#008200", "#00ff00", "yellow");

#undef VANDREL_LED_LARGE
#undef VANDREL_LED_SMALL
#undef VANDREL_LED_DISC

// The constant pictures are decoded once per process and shared through the pixmap cache; should the
// cache have dropped one, it is decoded again. False only when the cache refuses to hold it.
bool findLamp(const QString& key, const char* const* xpm, QPixmap* pix)
{
    if (QPixmapCache::find(key, pix))
        return true;
    QPixmapCache::insert(key, QPixmap(xpm));
    return QPixmapCache::find(key, pix);
}

} // namespace

VCLED::VCLED(QWidget* parent, const char* name, bool clickable)
    : QWidget(parent)
    , m_pTextValue(nullptr)
    , m_pBoolValue(nullptr)
    , m_pColorIndexValue(nullptr)
    , m_pTextLabel(nullptr)
    , m_pPictLabel(nullptr)
    , m_pTruePix(nullptr)
    , m_pFalsePix(nullptr)
    , m_strTrueKey(QStringLiteral("LED_True"))
    , m_strFalseKey(QStringLiteral("LED_False"))
    , m_strState0Key(QStringLiteral("LED_State0"))
    , m_strState1Key(QStringLiteral("LED_State1"))
    , m_strState2Key(QStringLiteral("LED_State2"))
    , m_strState3Key(QStringLiteral("LED_State3"))
    , m_bClickable(clickable)
{
    auto* layout = new QHBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    m_pTextLabel = new QLabel(this);
    m_pTextLabel->QObject::setObjectName(QStringLiteral("LED"));
    m_pTextLabel->setToolTip(tr("LED"));
    m_pPictLabel = new QLabel(this);
    m_pPictLabel->QObject::setObjectName(QStringLiteral("LED"));
    layout->addWidget(m_pPictLabel, 0);
    layout->addWidget(m_pTextLabel, 0);
    setLayout(layout);
    setEnabled(false);
    const QString strName = QString::fromUtf8(name);
    setToolTip(strName);
    setObjectName(strName);
}

VCLED::~VCLED()
{
    DetachValue(m_pTextValue, this);
    DetachValue(m_pBoolValue, this);
    DetachValue(m_pColorIndexValue, this);
    delete m_pTruePix;
    delete m_pFalsePix;
}

void VCLED::setObjectName(const QString& name)
{
    QObject::setObjectName(QStringLiteral("LED") + name);
    m_pTextLabel->QObject::setObjectName(QStringLiteral("LEDText") + name);
    m_pPictLabel->QObject::setObjectName(QStringLiteral("LEDPict") + name);
}

bool VCLED::SetBool_ValuePath(const QString& path)
{
    DetachValue(m_pBoolValue, this);
    DetachValue(m_pColorIndexValue, this);
    m_pBoolValue = FindAndAttach<values::Value<bool>>(path, nullptr, this);
    SyncObserver(m_pBoolValue, this);
    return m_pBoolValue != nullptr;
}

bool VCLED::SetColorIndex_ValuePath(const QString& path)
{
    DetachValue(m_pBoolValue, this);
    DetachValue(m_pColorIndexValue, this);
    m_pColorIndexValue = FindAndAttach<values::Value<int>>(path, nullptr, this);
    SyncObserver(m_pColorIndexValue, this);
    return m_pColorIndexValue != nullptr;
}

bool VCLED::SetText_ValuePath(const QString& path)
{
    DetachValue(m_pTextValue, this);
    m_pTextValue = FindAndAttach<values::Value<QString>>(path, nullptr, this);
    SyncObserver(m_pTextValue, this);
    return m_pTextValue != nullptr;
}

void VCLED::SetText(QString text)
{
    m_pTextLabel->setText(text);
}

void VCLED::SetTruePix(QPixmap pix)
{
    delete m_pTruePix;
    m_pTruePix = new QPixmap(pix);
    updatePix();
}

void VCLED::SetFalsePix(QPixmap pix)
{
    delete m_pFalsePix;
    m_pFalsePix = new QPixmap(pix);
    updatePix();
}

void VCLED::updatePix()
{
    const bool lit = m_pBoolValue && m_pBoolValue->GetValue();
    // The application's own pictures never enter the shared cache.
    if (lit && m_pTruePix) {
        m_pPictLabel->setPixmap(*m_pTruePix);
        return;
    }
    if (!lit && m_pFalsePix) {
        m_pPictLabel->setPixmap(*m_pFalsePix);
        return;
    }
    QPixmap pix;
    if (!findLamp(lit ? m_strTrueKey : m_strFalseKey, lit ? kTrueXpm : kFalseXpm, &pix))
        return;
    m_pPictLabel->setPixmap(pix);
}

void VCLED::Update(Observable* source, TChangeCode code)
{
    if (code == StateChanged) {
        // The text neither enables nor disables the lamp; it is only let go when removed.
        if (source == ObservableOf(m_pTextValue)) {
            ApplyValueRemoval(m_pTextValue, this);
            return;
        }
        if (source == ObservableOf(m_pBoolValue)) {
            ApplyValueState(m_pBoolValue, this);
            return;
        }
        if (source == ObservableOf(m_pColorIndexValue)) {
            ApplyValueState(m_pColorIndexValue, this);
            return;
        }
        return;
    }
    if (code == ValueChanged) {
        if (m_pTextValue && source == ObservableOf(m_pTextValue) && m_pTextLabel)
            m_pTextLabel->setText(m_pTextValue->GetValue());
        if (m_pBoolValue && source == ObservableOf(m_pBoolValue))
            updatePix();
        if (m_pColorIndexValue && source == ObservableOf(m_pColorIndexValue) && m_pPictLabel) {
            QPixmap pix;
            switch (m_pColorIndexValue->GetValue()) {
            case 1:
                findLamp(m_strState1Key, kState1Xpm, &pix);
                break;
            case 2:
                findLamp(m_strState2Key, kState2Xpm, &pix);
                break;
            case 3:
                findLamp(m_strState3Key, kState3Xpm, &pix);
                break;
            default:
                findLamp(m_strState0Key, kState0Xpm, &pix);
                break;
            }
            m_pPictLabel->setPixmap(pix);
        }
    } else if (code == ValueDestroyed) {
        ForgetDestroyedValue(m_pTextValue, source);
        ForgetDestroyedValue(m_pBoolValue, source);
        ForgetDestroyedValue(m_pColorIndexValue, source);
    }
}

void VCLED::mousePressEvent(QMouseEvent*)
{
    // A null originator: the lamp repaints through Update like every other observer. Nothing of the
    // lamp is touched after the write, since an observer of it may delete the lamp.
    if (m_bClickable && m_pBoolValue)
        m_pBoolValue->SetValue(!m_pBoolValue->GetValue(), nullptr);
}
