#pragma once

#include <values/format.h>
#include <values/valuebase.h>

namespace values {

/**
 * \brief A plain value of type \a T: a boolean, an integer, a 64-bit integer or a text.
 *
 * \a F is its text format and \a S its stream format; the defaults name the classes the controls cast
 * to, so \c values::Value<bool> is the boolean value class.
 */
template <class T, class F = typename DefaultFormat<T>::type, class S = StreamFormat<T, F>>
class Value : public ValueBase
{
public:
    /// The type of the value held.
    using value_type = T;

    /// A value holding \a initial, outside the tree until Tree::Add() places it.
    explicit Value(const T& initial = T())
        : m_value(initial)
    {
    }
    ~Value() override { AnnounceDestruction(); }

    /// Stores \a value and notifies ValueChanged to every observer but \a originator.
    virtual bool SetValue(T value, IObserver* originator)
    {
        UndoStep step(this);
        const bool changed = !(m_value == value);
        m_value = std::move(value);
        if (changed)
            step.Done();
        return Notify(ValueChanged, originator);
    }
    /// The current value.
    virtual T GetValue() const { return m_value; }

    bool SetValueFromText(const QString& text, IObserver* originator) override
    {
        T v;
        if (!F::FromString(text, v))
            return false;
        return SetValue(v, originator);
    }
    QString GetValueString() const override { return F::ToString(m_value); }

    /// Puts back a state captured for undo, notifying everyone.
    bool RestoreState(const T& state) { return SetValue(state, nullptr); }

protected:
    Command* CreateRestoreCommand() override { return new RestoreCommand<Value, T>(this, m_value); }

private:
    T m_value;
};

using BoolValue = Value<bool>;
using IntValue = Value<int>;
using Int64Value = Value<long long>;
using StringValue = Value<QString>;

} // namespace values
