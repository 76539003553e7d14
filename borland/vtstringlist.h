// A growable array of texts, with objects beside them and a lookup of entries like name=value.
#pragma once

#include "borland/vtstring.h"

// The type of a slot for a caller's object. Never defined: the list only carries the pointers.
class VeltoObject;

// Owns its strings and its two arrays, but not the objects. Capacities are 10, 15, 22, 33, 49, ...
//
// Only AddObject touches `Objects`: Add, Insert, Delete, Sort and Clear neither move nor clear it,
// so an object stays at its index whatever entry comes to stand there. A slot that was never given
// an object is null.
//
// Bad indices harm nothing: Delete ignores them, Insert refuses them, and the index operator
// answers an empty string of the list's own, which each such access empties again.
class VeltoStringList {
  public:
    VeltoString** list = nullptr;     // `size` pointers; null until the first Add
    int size = 0;                     // capacity of `list`, and of `Objects` where it exists
    int Count = 0;                    // entries in use
    VeltoStringList& Strings;         // this list itself
    VeltoStringList& Values;          // this list itself
    VeltoObject** Objects = nullptr;  // `size` pointers; null until the first AddObject

    VeltoStringList() : Strings(*this), Values(*this) {}
    VeltoStringList(const VeltoStringList&) = delete;
    VeltoStringList& operator=(const VeltoStringList&) = delete;
    ~VeltoStringList();

    // Appends a string that shares the record of `s`; answers its index.
    int Add(const VeltoString& s);
    // As Add, with `obj` in the slot of the new entry. The caller goes on owning `obj`.
    int AddObject(const VeltoString& s, void* obj);
    // Appends the strings of `other`, without its objects.
    void AddStrings(const VeltoStringList* other);
    // The strings of `other` take the place of all entries; objects are not copied.
    void Assign(const VeltoStringList* other);
    // Puts `s` in front of the entry at `index`, at Count behind the last. Answers the count before
    // the insertion, not the index; -1 for a bad index.
    int Insert(int index, const VeltoString& s);
    void Delete(int index);
    // Frees every string; capacity and arrays stay.
    void Clear();
    // Orders the texts by their bytes: capitals before small letters, accented letters last.
    void Sort();

    VeltoString& operator[](int index);
    // What follows "=" in the first entry that begins with `name` and "="; empty without one.
    VeltoString operator[](const char* name) const;

  private:
    void resize();

    VeltoString vazia_;
};
