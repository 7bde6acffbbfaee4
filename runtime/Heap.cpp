#include "runtime/Heap.h"

_eHeapElemBase::~_eHeapElemBase() = default;

_eHeap::~_eHeap() {
    for (_eHeapElem* element = first; element != nullptr; element = element->next) element->detach();
    for (_eHeapElem* element = first; element != nullptr;) {
        _eHeapElem* next = element->next;
        if (element->pinned == 0) delete element;
        element = next;
    }
}

void _eHeap::add(_eHeapElem* element) {
    element->next = first;
    first = element;
}

_eHeap* _eHeap::streamHeap() {
    static _eHeap heap;
    return &heap;
}
