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
    /// An exception with \a message, raised in \a method of \a className at \a file:\a line, with \a code.
    BrevanException(const QString& message, const QString& file, const QString& className,
                    const QString& method, unsigned int line, unsigned int code);
    /// Copies everything the exception carries.
    BrevanException(const BrevanException&) = default;
    /// Copies everything the exception carries.
    BrevanException& operator=(const BrevanException&) = default;
    virtual ~BrevanException();

    /// The message, for the user or the log.
    QString GetMessage() const { return m_strMessage; }
    /// The source file that raised the exception.
    QString GetFile() const { return m_strFile; }
    /// The class that raised the exception.
    QString GetClassName() const { return m_strClassName; }
    /// The method that raised the exception.
    QString GetMethod() const { return m_strMethod; }
    /// The source line that raised the exception.
    unsigned int GetLine() const { return m_nLine; }
    /// The numeric code of the error.
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
