// The list of texts: growth, order and lookup by name.
#include "borland/vtstringlist.h"

#include <algorithm>
#include <cstring>

namespace {

bool antes(const VeltoString* a, const VeltoString* b) {
    return std::strcmp(a->c_str(), b->c_str()) < 0;
}

// Moves an array of `antes` pointers to a new one of `depois`, the rest of it null.
template <class T>
T** muda_de_vetor(T** velho, int antes, int depois) {
    T** novo = new T* [depois] {};
    std::copy_n(velho, antes, novo);
    delete[] velho;
    return novo;
}

}  // namespace

VeltoStringList::~VeltoStringList() {
    Clear();
    delete[] list;
    delete[] Objects;
}

void VeltoStringList::resize() {
    const int nova = size == 0 ? 10 : size + size / 2;
    list = muda_de_vetor(list, Count, nova);
    if (Objects) Objects = muda_de_vetor(Objects, size, nova);
    size = nova;
}

int VeltoStringList::Add(const VeltoString& s) {
    if (Count == size) resize();
    list[Count] = new VeltoString(s);
    return Count++;
}

int VeltoStringList::AddObject(const VeltoString& s, void* obj) {
    const int indice = Add(s);
    if (!Objects) Objects = muda_de_vetor(Objects, 0, size);
    Objects[indice] = static_cast<VeltoObject*>(obj);
    return indice;
}

void VeltoStringList::AddStrings(const VeltoStringList* other) {
    const int total = other->Count;  // `other` may be this list
    for (int i = 0; i < total; ++i) Add(*other->list[i]);
}

void VeltoStringList::Assign(const VeltoStringList* other) {
    Clear();
    AddStrings(other);
}

int VeltoStringList::Insert(int index, const VeltoString& s) {
    if (index < 0 || index > Count) return -1;
    const int antes = Add(s);
    std::rotate(list + index, list + antes, list + Count);
    return antes;
}

void VeltoStringList::Delete(int index) {
    if (index < 0 || index >= Count) return;
    delete list[index];
    --Count;
    std::copy(list + index + 1, list + Count + 1, list + index);
}

void VeltoStringList::Clear() {
    for (int i = 0; i < Count; ++i) delete list[i];
    Count = 0;
}

void VeltoStringList::Sort() {
    std::stable_sort(list, list + Count, antes);
}

VeltoString& VeltoStringList::operator[](int index) {
    if (index >= 0 && index < Count) return *list[index];
    vazia_.deallocate();
    return vazia_;
}

VeltoString VeltoStringList::operator[](const char* name) const {
    if (!name) name = "";
    const std::size_t n = std::strlen(name);
    for (int i = 0; i < Count; ++i) {
        const VeltoString& s = *list[i];
        if (std::strncmp(s.c_str(), name, n) == 0 && s.c_str()[n] == '=')
            return s.SubString(static_cast<int>(n) + 2, s.Length());
    }
    return VeltoString();
}
