// The intrusive doubly linked list behind every table: two pointers, owns nothing.
#pragma once

// An element of a list carries its own `prev` and `next` and is in at most one list at a time. The
// list neither copies nor frees elements: whoever empties it deletes them (see removeAndGetNext).
template <class T>
class DList {
  public:
    T* head = nullptr;
    T* tail = nullptr;

    void putFirst(T* e) {
        e->next = head;
        e->prev = nullptr;
        (head ? head->prev : tail) = e;
        head = e;
    }

    void putLast(T* e) {
        e->next = nullptr;
        e->prev = tail;
        (tail ? tail->next : head) = e;
        tail = e;
    }

    // Unlinks `e`; its own links stay as they were, so a walk that stands on it can go on.
    void remove(T* e) {
        (e->prev ? e->prev->next : head) = e->next;
        (e->next ? e->next->prev : tail) = e->prev;
    }

    // Unlinks `e` and answers the element that followed it (null at the end).
    T* removeAndGetNext(T* e) {
        remove(e);
        return e->next;
    }

    T* first() const { return head; }
    T* last() const { return tail; }
    T* next(const T* e) const { return e->next; }
};

// Empties a list or table and deletes its elements.
template <class Lista>
void apaga_todos(Lista& lista) {
    for (auto* e = lista.first(); e;) {
        auto* seguinte = lista.removeAndGetNext(e);
        delete e;
        e = seguinte;
    }
}
