// The registry: keys to directories, values to files.
#include "borland/XmlRegistry.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <new>

#include "misc/ncutils.h"

namespace {

constexpr mode_t modo = 0755;

struct FechaDiretorio {
    void operator()(DIR* d) const { closedir(d); }
};

}  // namespace

// Writes the values back where needed and forgets them.
void XmlRegistry::grava() {
    if (isDirty) storage.SaveToFile(GetFilePath());
    isDirty = false;
    storage.Clear();
}

XmlRegistry::~XmlRegistry() {
    try {
        CloseKey();
    } catch (const std::bad_alloc&) {
    }
}

bool XmlRegistry::OpenKey(const VeltoString& key, bool create) {
    grava();
    if (key.Pos("\\") == 1)
        CurrentPath = key.SubString(2, 0);
    else if (CurrentPath.IsEmpty())
        CurrentPath = key;
    else
        CurrentPath.cat_printf("\\%s", key.c_str());

    const VeltoString dir = GetDirPath();
    if (isDirectory(dir.c_str())) {
        storage.LoadFromFile(GetFilePath());
        return true;
    }
    if (create) {
        CreateKeyDir();
        if (isDirectory(dir.c_str())) return true;
    }
    CurrentPath.deallocate();
    return false;
}

void XmlRegistry::CloseKey() {
    grava();
    CurrentPath.deallocate();
}

void XmlRegistry::WriteString(const VeltoString& name, const VeltoString& value) {
    isDirty = true;
    storage.WriteString(name, value);
}

void XmlRegistry::WriteInteger(const VeltoString& name, int value) {
    isDirty = true;
    storage.WriteInteger(name, value);
}

bool XmlRegistry::DeleteValue(const VeltoString& name) {
    isDirty = true;
    return storage.Delete(name);
}

bool XmlRegistry::DeleteKey(const VeltoString& name) {
    VeltoString suffix;
    suffix.printf("\\%s\\Values.xml", name.c_str());
    unlink(GetFullPath(suffix).c_str());
    suffix.printf("\\%s", name.c_str());
    return rmdir(GetFullPath(suffix).c_str()) == 0;
}

void XmlRegistry::GetKeyNames(VeltoStringList* list) {
    list->Clear();
    const std::unique_ptr<DIR, FechaDiretorio> dir(opendir(GetDirPath().c_str()));
    if (!dir) return;
    while (const dirent* entrada = readdir(dir.get())) {
        const VeltoString nome(entrada->d_name);
        if (nome != "." && nome != ".." && nome != "Values.xml") list->Add(nome);
    }
    list->Sort();
}

void XmlRegistry::GetValueNames(VeltoStringList* list) {
    list->Clear();
    storage.EnumNames(list);
}

VeltoString XmlRegistry::GetFullPath(const VeltoString& suffix) {
    VeltoString path;
    path.printf("%s\\%s", rootPath.c_str(), RootKey.c_str());
    if (!CurrentPath.IsEmpty()) path.cat_printf("\\%s", CurrentPath.c_str());
    path += suffix;
    for (int i = 1; i <= path.Length(); ++i)
        if (path[i] == '\\') path[i] = '/';
    return path;
}

int XmlRegistry::CreateKeyDir() {
    const VeltoString dir = GetDirPath();
    if (mkdir(dir.c_str(), modo) == 0) return 0;
    VeltoString prefixo;
    for (int i = 1; i <= dir.Length(); ++i) {
        if (dir[i] == '/') mkdir(prefixo.c_str(), modo);
        prefixo.append(&dir[i], 1);
    }
    return mkdir(dir.c_str(), modo) == 0 ? 1 : 0;
}
