#include <plinthor/plinthorapp.h>

#include <plinthor/coordinates.h>

#include <orvi/translationcenter.h>
#include <values/tree.h>
#include <values/valueselection.h>

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>

namespace {
// The library's words (format names, the editor's menu) live in the "Plinthor" catalog, known while
// the library is loaded.
struct CatalogHook
{
    CatalogHook()
    {
        TranslationCenter::Instance().Register(QStringLiteral("Plinthor"));
        TranslationCenter::Instance().InstallCatalog(QStringLiteral("Plinthor"));
    }
    ~CatalogHook() { TranslationCenter::Instance().Unregister(QStringLiteral("Plinthor")); }
};
const CatalogHook s_catalogHook;
} // namespace

Plinthor& Plinthor::Instance()
{
    // Never destroyed: controls hold connections to it until the very end of the process.
    static Plinthor* const instance = new Plinthor;
    instance->watchApplication();
    return *instance;
}

Plinthor::Plinthor()
    : m_strPositionFormatPath(PositionFormatPath())
    , m_bColorsChangePending(false)
{
}

Plinthor::~Plinthor() = default;

QString Plinthor::PositionFormatPath()
{
    return QStringLiteral("/plinthor/positionFormat");
}

void Plinthor::watchApplication()
{
    // An application made after the first call, or a second one after the first ended, is watched
    // from the next call on.
    QCoreApplication* application = QCoreApplication::instance();
    if (!application || application == m_pWatchedApplication)
        return;
    m_pWatchedApplication = application;
    application->installEventFilter(this);
}

values::ValueSelection* Plinthor::GetPositionFormat()
{
    values::Tree* tree = values::Tree::Instance();
    values::ValueBase* found = tree->Find(m_strPositionFormatPath);
    if (auto* selection = dynamic_cast<values::ValueSelection*>(found))
        return selection;

    values::ValueSelection* selection = nullptr;
    if (found) {
        // The path holds a value of the application's: the selection goes where nothing is in its way.
        m_strPositionFormatPath = values::UniqueValuesCreator::Instance().CreateValueSelection(false);
        selection = static_cast<values::ValueSelection*>(tree->Find(m_strPositionFormatPath));
    } else {
        selection = new values::ValueSelection;
        tree->Add(m_strPositionFormatPath, selection);
    }
    selection->SetTranslationNamespace("Plinthor");
    for (long key = GeoDecimal; key <= SweRef99; ++key) {
        const char* name = basecontrols::CoordText::FormatName(CoordFormat(key));
        selection->AddItem(QString::fromUtf8(name), double(key), key, nullptr);
    }
    return selection;
}

void Plinthor::EndEdit(QWidget* widget)
{
    Q_EMIT endEdit(widget);
}

bool Plinthor::eventFilter(QObject* watched, QEvent* event)
{
    // A filter on the application sees every object's events; the change is announced to the
    // application itself, before the widgets have taken up the new palette. The signal waits until they
    // have, so that its receivers read the new colours; changes in one go are announced once.
    if (event->type() == QEvent::ApplicationPaletteChange && watched == m_pWatchedApplication
        && !m_bColorsChangePending) {
        m_bColorsChangePending = true;
        auto announce = [this] {
            m_bColorsChangePending = false;
            Q_EMIT signalColorsChanged();
        };
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        // Qt 6 hands the change on to the shown windows in events it posts after this one: queue behind them.
        QTimer::singleShot(0, this, [this, announce] { QTimer::singleShot(0, this, announce); });
#else
        QTimer::singleShot(0, this, announce);
#endif
    }
    return QObject::eventFilter(watched, event);
}
