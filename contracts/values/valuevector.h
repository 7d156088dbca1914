#pragma once

#include <values/format.h>
#include <values/valuebase.h>

#include <QString>

#include <vector>

namespace values {

/// \brief A text with a check mark, the element of a checked-string vector.
class KORTHANE_EXPORT CheckedString
{
public:
    /// A text \a text, checked when \a checked is true.
    CheckedString(const QString& text = QString(), bool checked = false)
        : m_strText(text)
        , m_bChecked(checked)
    {
    }
    /// Copies text and check mark.
    CheckedString(const CheckedString&) = default;
    /// Copies text and check mark.
    CheckedString& operator=(const CheckedString&) = default;
    virtual ~CheckedString();

    /// The text.
    QString GetString() const { return m_strText; }
    /// True when checked.
    bool GetChecked() const { return m_bChecked; }
    /// Sets the text.
    void SetString(const QString& text) { m_strText = text; }
    /// Sets the check mark.
    void SetChecked(bool checked) { m_bChecked = checked; }

    /// True when text and check mark are both equal.
    bool operator==(const CheckedString& other) const
    {
        return m_bChecked == other.m_bChecked && m_strText == other.m_strText;
    }
    /// True when text or check mark differ.
    bool operator!=(const CheckedString& other) const { return !(*this == other); }

private:
    QString m_strText;
    bool m_bChecked;
};

/// Checked strings are written as text with FormatCheckedString.
template <>
struct DefaultFormat<CheckedString> { using type = FormatCheckedString; /**< The format class. */ };

template <class T, class F = typename DefaultFormat<T>::type, class S = StreamFormat<T, F>>
class ValueVector;

/**
 * \brief A vector of checked strings.
 *
 * GetValue() gives a copy; SetValue() replaces the whole vector. Its text form is the elements' stream
 * forms ("1:alpha", with ';' and '\\' escaped by a backslash), each followed by ';'.
 */
template <>
class KORTHANE_EXPORT ValueVector<CheckedString, FormatCheckedString, StreamFormat<CheckedString, FormatCheckedString>>
    : public ValueBase
{
public:
    /// The type of the value held.
    using Vector = std::vector<CheckedString>;

    /// \brief Sets a checked-string vector to a stored copy (command id 20).
    class KORTHANE_EXPORT CommandSetValue : public ValueBase::CommandOnValue
    {
    public:
        enum { Id = 20 };
        /// A command that sets \a value to a copy of \a vector on behalf of \a originator.
        CommandSetValue(ValueVector* value, const Vector& vector, IObserver* originator);
        ~CommandSetValue() override;
        /// Runs the set operation with the stored vector and originator.
        bool Execute() override;
        /// Head, element count, then each element's stream form, each followed by ';'.
        void AddCommandString(std::string& out, int format) override;
        Command* Clone() const override;
        /// The vector the command sets.
        const Vector& GetVector() const { return m_vector; }

    private:
        Vector m_vector;
    };

    /// A vector holding \a initial.
    explicit ValueVector(Vector initial = {});
    ~ValueVector() override;

    /// A copy of the stored vector.
    Vector GetValue() const { return m_vector; }
    /**
     * \brief Replaces the stored vector with a copy of \a vector, records a CommandSetValue when
     * recording is on, and notifies ValueChanged skipping \a originator. Returns what Notify returns.
     */
    bool SetValue(const Vector& vector, IObserver* originator);

    bool SetValueFromText(const QString& text, IObserver* originator) override;
    QString GetValueString() const override;

protected:
    Command* CreateRestoreCommand() override;

private:
    Vector m_vector;
};

using CheckedStringVector = ValueVector<CheckedString>;

} // namespace values
