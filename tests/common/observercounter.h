#pragma once

#include <values/observable.h>

#include <QList>

// Records the codes it hears and, like a control, detaches from what it watches when it goes.
class Counter : public IObserver
{
public:
    ~Counter() override
    {
        for (Observable* o : qAsConst(watched))
            o->Detach(this);
    }
    void watch(Observable* o)
    {
        o->Attach(this);
        watched << o;
    }
    void Update(Observable* source, TChangeCode code) override
    {
        codes << code;
        last = source;
        if (code == ValueDestroyed)
            watched.removeAll(source);
    }
    int count(TChangeCode code) const { return codes.count(code); }
    QList<TChangeCode> codes;
    QList<Observable*> watched;
    Observable* last = nullptr;
};
