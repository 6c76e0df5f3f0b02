#pragma once

#include "core/ZListT.h"

/// A list used first in, first out: `append` at the end, `pop` from the front.
template <class T> class ZQueueT : public ZListT<T> {
public:
    using ZListT<T>::ZListT;
    ZQueueT() = default;

    bool push(const T& value) { return this->append(value); }
    /// What `pop` gives next; null in an empty queue.
    const T* top() const { return this->first(); }
};
