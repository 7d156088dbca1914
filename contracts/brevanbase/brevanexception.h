#pragma once

#include <brevanbase/brevanbase_export.h>

#include <QString>

/**
 * \brief The exception class of the error services.
 *
 * Carries a message, the source file, class and method that raised it, the source line and a numeric
 * code. Nothing in Vandrel throws it; bound controls catch it where a framework call might.
 */
class BREVANBASE_EXPORT BrevanException
{
public:
    BrevanException(const QString& message, const QString& file, const QString& className,
                    const QString& method, unsigned int line, unsigned int code);
    BrevanException(const BrevanException&) = default;
    BrevanException& operator=(const BrevanException&) = default;
    virtual ~BrevanException();

    QString GetMessage() const { return m_strMessage; }
    QString GetFile() const { return m_strFile; }
    QString GetClassName() const { return m_strClassName; }
    QString GetMethod() const { return m_strMethod; }
    unsigned int GetLine() const { return m_nLine; }
    unsigned int GetCode() const { return m_nCode; }

    /// One line of text with everything the exception carries, for logs.
    QString ToString() const;

private:
    QString m_strMessage;
    QString m_strFile;
    QString m_strClassName;
    QString m_strMethod;
    unsigned int m_nLine;
    unsigned int m_nCode;
};
