#include <brevanbase/brevanexception.h>

BrevanException::BrevanException(const QString& message, const QString& file, const QString& className,
                                 const QString& method, unsigned int line, unsigned int code)
    : m_strMessage(message)
    , m_strFile(file)
    , m_strClassName(className)
    , m_strMethod(method)
    , m_nLine(line)
    , m_nCode(code)
{
}

BrevanException::~BrevanException() = default;

QString BrevanException::ToString() const
{
    return QStringLiteral("%1 (%2::%3, %4:%5, code %6)")
        .arg(m_strMessage, m_strClassName, m_strMethod, m_strFile)
        .arg(m_nLine)
        .arg(m_nCode);
}
