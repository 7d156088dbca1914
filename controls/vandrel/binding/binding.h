#pragma once

/**
 * \file
 * \brief The binding idiom shared by every Vandrel control, for controls of an application's own too.
 *
 * A bound control holds one raw pointer per value, null while unbound. It binds with FindAndAttach(),
 * takes its first picture with SyncObserver(), reacts to StateChanged with ApplyValueState(), and
 * recognises the caller of Update() by comparing the source with ObservableOf() of each of its values.
 */

#include <vandrel/valuestatus.h>
#include <vandrel/vandrel_export.h>

#include <brevanbase/brevanbase.h>
#include <values/values.h>

#include <QPointer>
#include <QString>
#include <QWidget>

#include <exception>
#include <functional>
#include <type_traits>
#include <utility>
#include <vector>

/// The Observable part of \a value, or null for a null value. The same pointer for every view of a value.
template <class T>
inline Observable* ObservableOf(T* value)
{
    return value ? static_cast<Observable*>(value) : nullptr;
}

/// The ValueBase of \a value, through GetValueBase() for the numeric and multi-selection views.
template <class T>
inline values::ValueBase* ValueBaseOf(T* value)
{
    if (!value)
        return nullptr;
    if constexpr (std::is_base_of<values::ValueBase, T>::value)
        return value;
    else if constexpr (std::is_base_of<values::IValueNumeric, T>::value || std::is_base_of<values::IMultiSelectionSet, T>::value)
        return value->GetValueBase();
    else
        return dynamic_cast<values::ValueBase*>(static_cast<Observable*>(value));
}

namespace vandrel::detail {
/// The value at \a path as a \a T, or null for an absent tree, an unknown path or a value of another kind.
template <class T>
T* FindValue(const QString& path)
{
    values::Tree* tree = values::Tree::Instance();
    values::ValueBase* found = tree ? tree->Find(path) : nullptr;
    if (!found)
        return nullptr;
    if constexpr (std::is_same<T, values::ValueBase>::value)
        return found;
    else
        return dynamic_cast<T*>(found);
}
} // namespace vandrel::detail

/**
 * \brief Detaches \a observer from \a oldValue, finds the value at \a path, casts it to \a T and
 * attaches \a observer to it.
 *
 * Returns null for an absent tree, an unknown path or a value of another kind; no error is reported, but the
 * value-status display hears of it. The caller stores the result, so that a failed lookup leaves it unbound.
 */
template <class T>
T* FindAndAttach(const QString& path, T* oldValue, IObserver* observer)
{
    if (oldValue && observer)
        ObservableOf(oldValue)->Detach(observer);
    T* value = vandrel::detail::FindValue<T>(path);
    if (value && observer)
        ObservableOf(value)->Attach(observer);
    if (vandrel::detail::g_valueStatusShown)
        vandrel::detail::StatusLookedUp(observer, path, ObservableOf(value));
    return value;
}

/**
 * \brief Tells the value-status display that \a observer lets go of the value in \a slot its own way,
 * rather than with DetachValue(), and that its next lookup fills that member.
 */
template <class T>
void NameBindingSlot(T*& slot, IObserver* observer)
{
    if (vandrel::detail::g_valueStatusShown)
        vandrel::detail::StatusSlotDetached(observer, &slot);
}

/**
 * \brief The value at \a path as a \a T, looked up for \a slot of \a observer and not attached; null as
 * FindAndAttach() gives it. For a control that attaches only after a lookup succeeded.
 */
template <class T, class Slot>
T* FindForSlot(const QString& path, Slot*& slot, IObserver* observer)
{
    T* value = vandrel::detail::FindValue<T>(path);
    if (vandrel::detail::g_valueStatusShown) {
        vandrel::detail::StatusSlotNamed(observer, &slot);
        vandrel::detail::StatusLookedUp(observer, path, ObservableOf(value));
    }
    return value;
}

/**
 * \brief Gives \a observer its first picture of \a value by calling its Update() directly with
 * StateChanged, RangeChanged, ItemsChanged (selections only) and ValueChanged, in this order.
 */
template <class T>
void SyncObserver(T* value, IObserver* observer)
{
    if (!value || !observer)
        return;
    // What the static type tells costs no cast: a bound control makes this call once per value it
    // binds, thousands of times in a large panel.
    Observable* observable = ObservableOf(value);
    if constexpr (std::is_base_of<values::IValueNumeric, T>::value) {
        observable = value->GetValueBase();
    } else if constexpr (!std::is_base_of<values::ValueBase, T>::value) {
        if (auto* numeric = dynamic_cast<values::IValueNumeric*>(observable))
            observable = numeric->GetValueBase();
    }
    if (!observable)
        return;
    bool selection = std::is_base_of<values::ValueSelection, T>::value;
    if constexpr (!std::is_base_of<values::ValueSelection, T>::value && !std::is_base_of<values::IValueNumeric, T>::value)
        selection = dynamic_cast<values::ValueSelection*>(observable) != nullptr;
    observer->Update(observable, StateChanged);
    observer->Update(observable, RangeChanged);
    if (selection)
        observer->Update(observable, ItemsChanged);
    observer->Update(observable, ValueChanged);
}

/**
 * \brief The reaction to StateChanged of \a value: Enabled enables \a control, Disabled disables it,
 * Removed detaches \a observer and clears \a value (the control keeps its enabled state).
 *
 * The state is read through GetValueBase() for IValueNumeric and IValueMultiSelection, from the value
 * itself otherwise. The enabling is QWidget's own, non-virtual setEnabled().
 */
template <class T>
void ApplyValueState(T*& value, QWidget* control, IObserver* observer)
{
    values::ValueBase* base = ValueBaseOf(value);
    if (!base)
        return;
    if (vandrel::detail::g_valueStatusShown)
        vandrel::detail::StatusStateSeen(control, observer, &value, base);
    switch (base->GetState()) {
    case Enabled:
        if (control)
            control->QWidget::setEnabled(true);
        break;
    case Disabled:
        if (control)
            control->QWidget::setEnabled(false);
        break;
    case Removed:
        ObservableOf(value)->Detach(observer);
        value = nullptr;
        break;
    default:
        break;
    }
}

/// ApplyValueState() for a control that is its own observer.
template <class T>
void ApplyValueState(T*& value, QWidget* control)
{
    ApplyValueState(value, control, dynamic_cast<IObserver*>(control));
}

/// ApplyValueState() that enables through the control's own virtual setEnabled().
template <class T, class Control>
void ApplyValueStateVirtual(T*& value, Control* control)
{
    values::ValueBase* base = ValueBaseOf(value);
    if (!base || !control)
        return;
    if (vandrel::detail::g_valueStatusShown)
        vandrel::detail::StatusStateSeen(control, nullptr, &value, base);
    switch (base->GetState()) {
    case Enabled:
        control->setEnabled(true);
        break;
    case Disabled:
        control->setEnabled(false);
        break;
    case Removed:
        ObservableOf(value)->Detach(static_cast<IObserver*>(control));
        value = nullptr;
        break;
    default:
        break;
    }
}

/// ApplyValueState() that only lets go of a Removed value; Enabled and Disabled change nothing.
template <class T>
void ApplyValueRemoval(T*& value, IObserver* observer)
{
    values::ValueBase* base = ValueBaseOf(value);
    if (base && vandrel::detail::g_valueStatusShown)
        vandrel::detail::StatusStateSeen(nullptr, observer, &value, base);
    if (base && base->GetState() == Removed) {
        ObservableOf(value)->Detach(observer);
        value = nullptr;
    }
}

/// Detaches \a observer from \a value, when bound, and clears the pointer.
template <class T>
void DetachValue(T*& value, IObserver* observer)
{
    if (value)
        ObservableOf(value)->Detach(observer);
    value = nullptr;
    if (vandrel::detail::g_valueStatusShown)
        vandrel::detail::StatusSlotDetached(observer, &value);
}

/**
 * \brief The reaction to ValueDestroyed: clears \a value when \a source is its Observable part, with
 * no Detach, since the value is going. Returns whether it matched.
 */
template <class T>
bool ForgetDestroyedValue(T*& value, Observable* source)
{
    if (!value || source != ObservableOf(value))
        return false;
    if (vandrel::detail::g_valueStatusShown)
        vandrel::detail::StatusValueDestroyed(&value, source, ValueBaseOf(value));
    value = nullptr;
    return true;
}

/**
 * \brief Disables \a control as setEnabled(false) does, for a control in its constructor that has no
 * children yet.
 *
 * Nobody has seen the control, so there is nobody to tell: the EnabledChange event and the
 * accessibility update it makes (most of what a bound slider costs beyond a plain one) are left out.
 * isEnabled() and a later setEnabled(true) behave exactly as after setEnabled(false).
 */
inline void StartDisabled(QWidget* control)
{
    control->setAttribute(Qt::WA_ForceDisabled);
    control->setAttribute(Qt::WA_Disabled);
}

/**
 * \brief Runs \a write, a write of \a control to one of its values, and tells whether the control
 * outlived it.
 *
 * Observers of the value run inside the write, and one of them may delete the control: an application
 * that closes a panel when a value changes, or an undo that rebuilds it. A control touches nothing of
 * itself after a write that this answered false for.
 */
template <class Write>
bool SurvivesWrite(QObject* control, Write&& write)
{
    const QPointer<QObject> alive(control);
    write();
    return !alive.isNull();
}

/**
 * \brief Holds back the writes a control makes while its Qt base class handles one of its events.
 *
 * Some Qt widgets go on touching themselves after the hook in which a control writes: a spin box steps
 * inside its key, mouse and timer handlers and then updates its own state. An observer of the write
 * may delete the control, so such a control routes its events through Deliver() and its writes through
 * Write(): inside an event a write runs once the base class has returned, in the order made; outside
 * one it runs at once. Nothing of the control is touched after a held write that deleted it.
 */
class HeldWrites
{
public:
    /// Runs \a handler, the base class's handling of one event, then the writes it held.
    template <class Handler>
    bool Deliver(QObject* control, Handler&& handler)
    {
        const QPointer<QObject> alive(control);
        ++m_nDepth;
        const bool result = handler();
        if (!alive)
            return result;
        if (--m_nDepth > 0 || m_writes.empty())
            return result;
        std::vector<std::function<void()>> writes;
        writes.swap(m_writes);
        for (const std::function<void()>& write : writes) {
            write();
            if (!alive)
                break;
        }
        return result;
    }

    /// Runs \a write now, or when the event being handled has been, if one is.
    template <class Body>
    void Write(Body&& write)
    {
        if (m_nDepth > 0)
            m_writes.emplace_back(std::forward<Body>(write));
        else
            write();
    }

    /// Whether writes are held now.
    bool Holding() const { return m_nDepth > 0; }

private:
    int m_nDepth = 0;
    std::vector<std::function<void()>> m_writes;
};

/**
 * \brief Reads the entries of \a log from \a nextSequence on.
 *
 * Returns 0 when nothing is new, 1 when every new entry is of \a kind (\a nextSequence then stands
 * after them), and -1 when entries were lost or one of another kind came (\a nextSequence then stands
 * at the log's next sequence): the reader must rebuild.
 */
VANDREL_EXPORT signed char ScanChangeLog(const values::MultiSelectionChangeLog* log, unsigned long long& nextSequence,
                                         unsigned char kind);

/**
 * \brief ScanChangeLog() that also hands back, in \a keys, the keys of the entries it read.
 *
 * Same results. With 1, \a keys holds the key of each new entry in log order (a key may come more than
 * once); otherwise it is empty. A control that keeps per-item state applies just those keys.
 */
VANDREL_EXPORT signed char ScanChangeLogKeys(const values::MultiSelectionChangeLog* log, unsigned long long& nextSequence,
                                             unsigned char kind, std::vector<unsigned int>& keys);

/**
 * \brief Runs a binding \a body that may meet exceptions of the value framework.
 *
 * A BrevanException or std::exception is traced once (when the mask asks for failures) under the
 * caller's \a unit and \a line, logged and reported through ErrorHandler::Interface(), and the binding
 * gives false. Other exceptions pass. A binding writes
 * `return GuardedBinding(__FILE__, __LINE__, [&] { ... });`.
 */
template <class Body>
bool GuardedBinding(const char* unit, unsigned short line, Body&& body)
{
    try {
        return body();
    } catch (const BrevanException& e) {
        if (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Failures)
            _Q_Trace(QStringLiteral("BrevanException caught in standard catch-block"), QString::fromUtf8(unit), line);
        ErrorHandler::Interface()->LogException(e);
        ErrorHandler::Interface()->ReportException(e, nullptr, -1, true, false);
    } catch (const std::exception& e) {
        if (ErrorHandler::Instance().GetReportingMask() & ErrorHandler::Failures)
            _Q_Trace(QStringLiteral("Standard C++ Exception caught in standard catch-block"), QString::fromUtf8(unit), line);
        const BrevanException wrapped(QString::fromUtf8(e.what()), QString::fromUtf8(unit), QStringLiteral("class"),
                                      QStringLiteral("method"), line, 4294967295u);
        ErrorHandler::Interface()->LogException(wrapped);
        ErrorHandler::Interface()->ReportException(wrapped, nullptr, -1, true, false);
    }
    return false;
}

/// Translates an item name of \a value in the value's own translation namespace.
VANDREL_EXPORT QString TranslateItemName(const values::ValueBase* value, const QString& name);
