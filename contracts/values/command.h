#pragma once

#include <values/korthane_export.h>

#include <string>

namespace ORVI {
/// \brief A command that can be executed.
class KORTHANE_EXPORT ICommand
{
public:
    virtual ~ICommand();
    /// Runs the command; false when it could not be carried out.
    virtual bool Execute() = 0;
};
} // namespace ORVI

namespace values {

/// \brief A command of the value framework: an id, a text form and a copy operation.
class KORTHANE_EXPORT Command : public ORVI::ICommand
{
public:
    /// Makes a command of kind \a commandId (see GetCommandId()).
    explicit Command(int commandId);
    ~Command() override;
    /// The kind of the command, for example 20 for setting a checked-string vector.
    virtual int GetCommandId() const;
    /// Appends the text form of the command to \a out. The base writes the id and a separator.
    virtual void AddCommandString(std::string& out, int format);
    /// A new command equal to this one; the caller owns it.
    virtual Command* Clone() const = 0;

protected:
    /// Appends the separator of the text form. Every format uses ';'.
    static void AddSemicolon(std::string& out, int format);

private:
    int m_nCommandId;
};

} // namespace values
