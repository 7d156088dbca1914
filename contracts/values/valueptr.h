#pragma once

#include <values/observable.h>
#include <values/tree.h>
#include <values/valuebase.h>

namespace values {

/**
 * \brief A small observing holder of a value of type \a T.
 *
 * It attaches itself to the value and lets go of it when the value announces Removed or is
 * destroyed. Assign(null) lets go without touching the tree; Reset() also removes the value from the
 * tree.
 */
template <class T>
class ValuePtr : public IObserver
{
public:
    ValuePtr() = default;
    ValuePtr(const ValuePtr&) = delete;
    ValuePtr& operator=(const ValuePtr&) = delete;
    ~ValuePtr() override
    {
        if (m_pValue)
            observable()->Detach(this);
    }

    void Update(Observable* source, TChangeCode code) override
    {
        if (!m_pValue || source != observable())
            return;
        if (code == ValueDestroyed) {
            m_pValue = nullptr; // the value is going: no Detach
        } else if (code == StateChanged && valueBase()->GetState() == Removed) {
            detachAll();
            m_pValue = nullptr;
        }
    }
    /// Lets go of the held value, removes it from the tree and clears the pointer.
    virtual void Reset()
    {
        if (!m_pValue)
            return;
        detachAll();
        const QString path = valueBase()->GetPathName();
        m_pValue = nullptr;
        if (Tree* tree = Tree::Instance())
            tree->ReleaseValue(path);
    }
    /// Holds \a value instead of the present one; null lets go. Nothing happens for the held value.
    virtual void Assign(T* value)
    {
        if (value == m_pValue)
            return;
        if (m_pValue)
            detachAll();
        m_pValue = value;
        if (m_pValue)
            attachAll();
    }

    /// The held value; null when none is held or it has gone.
    T* Get() const { return m_pValue; }
    /// The held value, for calls on it; check first that one is held.
    T* operator->() const { return m_pValue; }
    /// True while a value is held.
    explicit operator bool() const { return m_pValue != nullptr; }

protected:
    /// Detaches this holder (and, in subclasses, its other observers) from the held value.
    virtual void detachAll() { observable()->Detach(this); }
    /// Attaches this holder (and, in subclasses, its other observers) to the held value.
    virtual void attachAll() { observable()->Attach(this); }
    /// The Observable part of the held value; only valid while one is held.
    Observable* observable() const { return static_cast<Observable*>(m_pValue); }
    /// The held value as ValueBase; only valid while one is held.
    ValueBase* valueBase() const { return dynamic_cast<ValueBase*>(observable()); }

    /// The held value; not owned (the tree owns it).
    T* m_pValue = nullptr;
};

/**
 * \brief A ValuePtr that also attaches a second observer, the target, to the held value, so that a
 * control hears of the value's changes while the holder tracks its life.
 *
 * The target is attached before the holder and detached before it.
 */
template <class T>
class ValueObservingPtr : public ValuePtr<T>
{
public:
    /// A holder that attaches \a target (not owned; may be null) to each value it holds.
    explicit ValueObservingPtr(IObserver* target)
        : m_pTarget(target)
    {
    }
    ~ValueObservingPtr() override
    {
        if (this->m_pValue && m_pTarget)
            this->observable()->Detach(m_pTarget);
    }
    /// The observer attached beside the holder.
    IObserver* GetTarget() const { return m_pTarget; }

protected:
    /// Reimplemented to detach the target first.
    void detachAll() override
    {
        if (m_pTarget)
            this->observable()->Detach(m_pTarget);
        ValuePtr<T>::detachAll();
    }
    /// Reimplemented to attach the target before the holder.
    void attachAll() override
    {
        if (m_pTarget)
            this->observable()->Attach(m_pTarget);
        ValuePtr<T>::attachAll();
    }

private:
    IObserver* m_pTarget;
};

} // namespace values
