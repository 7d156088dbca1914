#pragma once

#include <orvi/orvi_export.h>

#include <QByteArray>
#include <QMutex>
#include <QString>
#include <QStringList>

#include <map>
#include <memory>

class QTranslator;

/**
 * \brief The translation centre: translation namespaces backed by Qt Linguist catalogs.
 *
 * A library or application registers a namespace (\c "Vandrel") and the centre loads the catalog
 * \c \<namespace\>_\<locale\>.qm for it (the namespace in lower case, for example \c vandrel_de.qm), searching
 * in this order:
 *  1. the directories given with AddSearchPath(), newest first;
 *  2. \c translations/ beside the application binary;
 *  3. \c \<location\>/\<namespace\>/translations (namespace in lower case) for each of
 *     QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation), e.g.
 *     \c /usr/share/vandrel/translations; a Qt 6 build first tries \c \<location\>/\<namespace\>6/translations,
 *     where its own catalogs install beside those of a Qt 5 build;
 *  4. the Qt resource directory \c :/i18n.
 *
 * Within a directory each of QLocale::uiLanguages() is tried from its full tag down to the bare
 * language (for de_AT: \c vandrel_de_AT.qm, then \c vandrel_de.qm); the first catalog found is the
 * namespace's one. A file that is found but cannot be loaded is traced as a failure and the search
 * goes on.
 *
 * The catalog is loaded lazily, on the first translate() after a QCoreApplication exists, for
 * QLocale() at that moment (or the locale given to SetLocale()); SetLocale() reloads every namespace.
 * Registering needs no application, so a library may register from its load-time initialisation;
 * namespaces registered before the QCoreApplication get their catalogs when it is created. A library
 * whose classes translate their own words with tr() (context: the class name) asks with
 * InstallCatalog() that its catalog also serve the application's lookups.
 * A text is looked up with the namespace as translation context, first in the catalog the centre
 * loaded for that namespace, then among the translators that the application installed itself. When
 * nothing is found the text comes back unchanged. All members may be called from any thread.
 */
class ORVI_EXPORT TranslationCenter
{
public:
    /// The one translation centre of the process.
    static TranslationCenter& Instance();

    /// Makes a translation namespace known; registering a known namespace again changes nothing.
    void Register(const QString& name);
    /// Makes the namespace unknown again, however often it was registered, and unloads its catalog.
    void Unregister(const QString& name);
    /**
     * \brief Installs the catalog of the registered namespace \a name into the application as well,
     * now and after every reload, so that tr() of the namespace's classes finds its words. Installing
     * happens on the application's thread; an unknown name is ignored.
     */
    void InstallCatalog(const QString& name);
    /// True while the namespace is registered.
    bool IsRegistered(const QString& name) const;
    /// The registered namespaces, sorted.
    QStringList RegisteredNames() const;

    /**
     * \brief Translates \a text in the namespace \a nameSpace.
     *
     * \a context, when not null, is a disambiguation comment as in QCoreApplication::translate().
     * A namespace that is not registered is looked up only among the application's translators.
     * A null namespace, an empty text, a text without a translation or a call before the
     * QCoreApplication exists gives \a text unchanged.
     */
    QString translate(const char* nameSpace, QString text, const char* context = nullptr) const;

    /**
     * \brief Adds a directory to search for catalogs; it is searched before those added earlier.
     *
     * Adding a directory again moves it to the front. Catalogs already loaded are looked up again
     * lazily, so a catalog in the new directory takes over. An empty name is ignored.
     */
    void AddSearchPath(const QString& directory);
    /// The directories added with AddSearchPath(), in search order; the built-in places follow them.
    QStringList SearchPaths() const;
    /**
     * \brief Loads the catalogs of all registered namespaces for \a localeName (empty: QLocale()).
     *
     * Before a QCoreApplication exists the locale is only recorded and the catalogs load lazily.
     */
    void SetLocale(const QString& localeName);
    /**
     * \brief The file of the catalog loaded for \a name, empty when none was found.
     *
     * Loads the catalog first if it was not loaded yet (once a QCoreApplication exists).
     */
    QString LoadedCatalog(const QString& name) const;

private:
    TranslationCenter();
    ~TranslationCenter();
    TranslationCenter(const TranslationCenter&) = delete;
    TranslationCenter& operator=(const TranslationCenter&) = delete;

    struct Entry;
    // Both expect m_mutex to be held.
    Entry* ensureLoaded(const QByteArray& name) const;
    void load(const QByteArray& name, Entry& entry) const;

    // Recursive: installing a catalog into the application sends LanguageChange, and widgets that
    // retranslate then call back into the centre on the same thread.
    mutable QRecursiveMutex m_mutex;
    QStringList m_searchPaths; // newest first
    QString m_strLocale;       // empty: QLocale() when a catalog loads
    // Keyed by the namespace's UTF-8 bytes so translate() can look up its const char* without copying.
    std::map<QByteArray, std::unique_ptr<Entry>> m_entries;
};
