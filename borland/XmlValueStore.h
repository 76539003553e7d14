// The named values of one registry key, and the file that keeps them.
#pragma once

#include "borland/vtstring.h"
#include "borland/vtstringlist.h"

enum XmlRegValueType { vtInt = 0, vtString = 1 };

struct XmlRegValue {
    VeltoString name;
    XmlRegValueType vt = vtInt;
    VeltoString valString;  // the value of a vtString
    int valInt = 0;         // the value of a vtInt
};

// Entries keep the order in which they were made, in memory and in the file. Names are told apart
// by their bytes; each lookup walks the entries.
class XmlValueStore {
  public:
    XmlRegValue** store = nullptr;  // the entries, owned; null until the first one
    int storeSz = 0;                // capacity in entries, ten more each time
    int storeIdx = 0;               // entries in use

    XmlValueStore() = default;
    XmlValueStore(const XmlValueStore&) = delete;
    XmlValueStore& operator=(const XmlValueStore&) = delete;
    ~XmlValueStore();

    // Destroys all entries; the capacity stays.
    void Clear();

    // Sets an entry, made where there is none; an entry of the other type changes its type.
    void WriteString(const VeltoString& name, const VeltoString& value);
    void WriteInteger(const VeltoString& name, int value);
    // The value; empty, or 0, when there is none of that type. Nothing is converted.
    VeltoString ReadString(const VeltoString& name);
    int ReadInteger(const VeltoString& name);
    // False when there is no such entry.
    bool Delete(const VeltoString& name);
    // Appends all names to `list`.
    void EnumNames(VeltoStringList* list);

    // Index of the entry with exactly this name, or -1.
    int findName(const VeltoString& name);
    // As findName, but a missing entry is made, an integer 0.
    int findOrAllocName(const VeltoString& name);

    // Reads a value file into the present entries. False when it cannot be read or is malformed:
    // the entries up to the fault are kept. Takes time in proportion to the file.
    bool LoadFromFile(const VeltoString& path);
    // Writes all entries. False on any failure, and the old file is then whole.
    bool SaveToFile(const VeltoString& path);

  private:
    friend class LeituraDeValores;

    XmlRegValue* acrescenta(const VeltoString& name);

    int alocado_ = 0;  // entries that `store` has room for: it doubles, storeSz only counts
};
