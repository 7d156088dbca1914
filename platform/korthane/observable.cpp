#include <values/observable.h>

#include <algorithm>

IObserver::~IObserver() = default;

// One running notification of an Observable. Frames chain through nested notifications of the same
// object, so that its destructor can tell each of them to stop touching it.
struct Observable::NotifyFrame
{
    NotifyFrame* outer;
    bool destroyed;
};

Observable::Observable() = default;

Observable::~Observable()
{
    for (NotifyFrame* frame = m_pFrames; frame; frame = frame->outer)
        frame->destroyed = true;
}

void Observable::Attach(IObserver* observer)
{
    if (!observer || IsAttached(observer))
        return;
    m_observers.push_back(observer);
}

void Observable::Detach(IObserver* observer)
{
    if (!observer)
        return;
    const auto it = std::find(m_observers.begin(), m_observers.end(), observer);
    if (it == m_observers.end())
        return;
    if (m_pFrames) {
        // A notification is walking the list by index: leave a hole and compact afterwards.
        *it = nullptr;
        ++m_nDetachedDuringNotify;
    } else {
        m_observers.erase(it);
    }
}

bool Observable::IsAttached(const IObserver* observer) const
{
    return observer && std::find(m_observers.begin(), m_observers.end(), observer) != m_observers.end();
}

int Observable::ObserverCount() const
{
    return int(m_observers.size()) - m_nDetachedDuringNotify;
}

bool Observable::NotifyObservers(TChangeCode code, const IObserver* originator)
{
    // Observers attached during this notification are heard from the next one on.
    const size_t count = m_observers.size();
    if (count == 0)
        return true;
    NotifyFrame frame{m_pFrames, false};
    m_pFrames = &frame;
    for (size_t i = 0; i < count; ++i) {
        IObserver* observer = m_observers[i];
        if (!observer || observer == originator)
            continue;
        observer->Update(this, code);
        if (frame.destroyed)
            return false; // this object is gone: touch nothing
    }
    m_pFrames = frame.outer;
    if (!m_pFrames && m_nDetachedDuringNotify)
        compact();
    return true;
}

void Observable::compact()
{
    m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), nullptr), m_observers.end());
    m_nDetachedDuringNotify = 0;
}
