#include <values/tree.h>
#include <values/undo.h>
#include <values/valuebase.h>
#include <values/valueselection.h>

#include <brevanbase/errorhandler.h>

#include <algorithm>

namespace values {

Tree::Tree()
{
    // The recorder must outlive every value: values tell it when they go.
    UndoRecorder::Instance();
}

Tree::~Tree() = default;

Tree* Tree::Instance()
{
    // Never destroyed: values may still be held by controls that outlive static destruction order.
    static Tree* const tree = new Tree;
    return tree;
}

ValueBase* Tree::Find(const QString& path) const
{
    return m_values.value(path, nullptr);
}

bool Tree::IsValidPath(const QString& path)
{
    if (path.size() < 2 || path.at(0) != QLatin1Char('/') || path.endsWith(QLatin1Char('/')))
        return false;
    return !path.contains(QLatin1String("//"));
}

bool Tree::IsOnOrUnder(const QString& path, const QString& basePath)
{
    if (path.isEmpty())
        return false;
    QString base = basePath;
    while (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    if (base.isEmpty())
        return true;
    return path == base || (path.startsWith(base) && path.at(base.size()) == QLatin1Char('/'));
}

bool Tree::Add(const QString& path, ValueBase* value)
{
    if (!value || !IsValidPath(path) || m_values.contains(path) || !value->m_strPath.isEmpty()) {
        BREVAN_TRACE_FAILURE(QStringLiteral("Tree::Add refused for path '%1'").arg(path));
        return false;
    }
    value->m_strPath = path;
    m_values.insert(path, value);
    return true;
}

bool Tree::Remove(const QString& path)
{
    // Out of the tree first, so that an observer reacting to Removed cannot remove it a second time.
    ValueBase* value = m_values.take(path);
    if (!value)
        return false;
    value->SetState(Removed);
    delete value;
    return true;
}

void Tree::ReleaseValue(const QString& pathName)
{
    Remove(pathName);
}

void Tree::Clear()
{
    // Values added by observers during the clearing are cleared too.
    while (!m_values.isEmpty()) {
        QStringList paths = m_values.keys();
        std::sort(paths.begin(), paths.end());
        for (const QString& path : qAsConst(paths))
            Remove(path);
    }
}

QStringList Tree::Paths() const
{
    QStringList paths = m_values.keys();
    std::sort(paths.begin(), paths.end());
    return paths;
}

QStringList Tree::PathsUnder(const QString& basePath) const
{
    QStringList paths;
    for (auto it = m_values.cbegin(); it != m_values.cend(); ++it) {
        if (IsOnOrUnder(it.key(), basePath))
            paths << it.key();
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

UniqueValuesCreator& UniqueValuesCreator::Instance()
{
    static UniqueValuesCreator creator;
    return creator;
}

QString UniqueValuesCreator::CreateValueSelection(bool followNewest)
{
    Tree* tree = Tree::Instance();
    QString path;
    do {
        path = QStringLiteral("/.unique/selection%1").arg(++m_nNext);
    } while (tree->Find(path));
    tree->Add(path, new ValueSelection(followNewest));
    return path;
}

} // namespace values
