// Objects that live on a process-wide heap. The one heap of this system, the stream heap,
// never receives an element; the family is complete for modules that use one.
#pragma once

#include "runtime/Config.h"

class MB_API _eHeapElemBase {
public:
    virtual ~_eHeapElemBase();
    virtual bool isHeap() const { return false; }
};

// An element of a heap's chain; `pinned` keeps it alive beyond its heap.
class MB_API _eHeapElem : public _eHeapElemBase {
public:
    virtual void detach() {}

    _eHeapElem* next = nullptr;
    int pinned = 0;
};

class MB_API _eHeap : public _eHeapElemBase {
public:
    _eHeap() = default;
    _eHeap(const _eHeap&) = delete;
    _eHeap& operator=(const _eHeap&) = delete;
    // Detaches every element, then deletes each one that isn't pinned.
    ~_eHeap() override;
    bool isHeap() const override { return true; }

    // Puts `element` at the front of the chain; the heap owns it from now on.
    void add(_eHeapElem* element);
    _eHeapElem* getFirst() const { return first; }

    // The heap of the storage streams.
    static _eHeap* streamHeap();

private:
    _eHeapElem* first = nullptr;
};
