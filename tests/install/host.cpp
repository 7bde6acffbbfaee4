// A host built outside the project against the installed library: it lists the classes of a model.
#include <cstdio>

#include "Generated/XMLImporter.h"

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    std::wstring name;
    for (const char* p = argv[1]; *p != '\0'; ++p) name.push_back(wchar_t(static_cast<unsigned char>(*p)));
    bool success = false;
    importer.attemptParse(_eString(std::wstring_view(name)), L"", success);
    if (!success) return 1;
    _eSeq<_eString> classes = importer.getClassList();
    for (int i = 0; i < classes.size(); ++i) std::printf("%ls\n", toWString(classes.at(i)).c_str());
    return 0;
}
