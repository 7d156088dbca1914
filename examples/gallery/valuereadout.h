#pragma once

#include <values/observable.h>

#include <QLabel>

#include <functional>

namespace values {
class ValueBase;
}

/**
 * \brief A label that shows a value of the tree as text and follows it.
 *
 * Bound, it shows the formatter's text of the value and greys out while the value is disabled; once
 * the value is removed it lets go of it and shows a greyed dash until it is bound again.
 */
class ValueReadout : public QLabel, public IObserver
{
    Q_OBJECT

public:
    using Formatter = std::function<QString(values::ValueBase&)>;

    /// Without a formatter the readout shows GetValueString().
    explicit ValueReadout(Formatter formatter = Formatter(), QWidget* parent = nullptr);
    ~ValueReadout() override;

    /// Binds to the value at \a path; false (and unbound) when there is none.
    bool bind(const QString& path);
    bool isBound() const { return m_pValue != nullptr; }

    void Update(Observable* source, TChangeCode code) override;

private:
    void release();
    void refresh();
    void showUnbound();

    Formatter m_format;
    values::ValueBase* m_pValue = nullptr;
};
