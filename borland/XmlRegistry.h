// A registry of keys and values kept as a tree of directories, one value file in each.
#pragma once

#include "borland/XmlValueStore.h"
#include "borland/vtstring.h"
#include "borland/vtstringlist.h"

// One key is open at a time. Its values are in memory; if they were changed, they are written to
// its file when the next key is opened, on CloseKey() and on destruction. A failure to write them
// is not reported, but leaves the old file whole.
//
// The key A\B\C of the root R is the directory rootPath/R/A/B/C, its values are in Values.xml
// there. Nothing here prints, and failures show in the answer only. One thread at a time.
class XmlRegistry {
  public:
    bool isDirty = false;  // the open key's values are to be written
    VeltoString rootPath;
    XmlValueStore storage;                      // the open key's values
    VeltoString RootKey = "HKEY_CURRENT_USER";  // to be set before a key is opened
    VeltoString CurrentPath;                    // the open key: A\B\C; "" when none is open

    // `base` is the directory that holds the roots.
    XmlRegistry(const char* base = "/etc/regdb") : rootPath(base) {}
    XmlRegistry(const XmlRegistry&) = delete;
    XmlRegistry& operator=(const XmlRegistry&) = delete;
    // As CloseKey; values are lost when there is no memory to write them.
    ~XmlRegistry();

    // Opens `key`: from the root when it begins with a backslash, else below the key that is open.
    // With `create` a missing chain of keys is made. False when there is no such key: none is open
    // then.
    bool OpenKey(const VeltoString& key, bool create);
    void CloseKey();

    // The open key's values, as XmlValueStore tells.
    VeltoString ReadString(const VeltoString& name) { return storage.ReadString(name); }
    int ReadInteger(const VeltoString& name) { return storage.ReadInteger(name); }
    void WriteString(const VeltoString& name, const VeltoString& value);
    void WriteInteger(const VeltoString& name, int value);
    // False when there is no such value; the file is written again all the same.
    bool DeleteValue(const VeltoString& name);
    // Removes the values of a key below the open one, then its directory. Subkeys are not removed:
    // a key that has some stays, without its values, and the answer is false.
    bool DeleteKey(const VeltoString& name);

    // The names below the open key, ordered by their bytes. Everything in its directory counts as a
    // key but Values.xml.
    void GetKeyNames(VeltoStringList* list);
    // The open key's value names, in their order.
    void GetValueNames(VeltoStringList* list);

    // The path of the open key with `suffix`, every backslash turned into a slash.
    VeltoString GetFullPath(const VeltoString& suffix);
    VeltoString GetDirPath() { return GetFullPath(""); }
    VeltoString GetFilePath() { return GetFullPath("\\Values.xml"); }
    // Makes the open key's directory, mode 0755 less the umask. 1 only when directories above it
    // had to be made first and all went well; 0 when the first attempt made it, and also on
    // failure.
    int CreateKeyDir();

  private:
    void grava();
};
