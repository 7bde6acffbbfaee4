// Any bytes through the whole path: parse, analyse, report what is left out, list, generate
// every class one by one and all together, and render one. Nothing may crash; failures come back as data. Inputs whose
// length and first byte add up to an odd number (so UTF-16 with its mark among them) take every
// switch of the extensions (XMI 2 documents read as such, XMI 1.x documents searched anywhere,
// members read in every form, references and encodings decoded, model text never a comment),
// the others the specified road, so that every road is fuzzed at the cost of one.
#include <cstdint>

#include "FuzzInput.h"
#include "Generated/XMLImporter.h"
#include "environment/PlatformText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static _eHndl<Environment> environment(new Environment());
    std::string path = writeInput(data, size);
    XMLImporter importer(environment.get());
    ImportExtensions extensions;
    bool extended = (size + (size > 0 ? data[0] : 0)) % 2 == 1;
    for (const ImportSwitch& each : importSwitches) extensions.*each.field = extended;
    importer.chooseExtensions(extensions);
    bool success = false;
    importer.attemptParse(fromPlatformText(path), _eString(), success);
    importer.getParseDiagnostics();
    importer.getErrorList(true);
    importer.getMostSevereErrorMsg();
    if (!success) return 0;
    importer.getLeftOutReport(true);
    _eString directory = fromPlatformText(fuzzDirectory() + "/");
    _eSeq<_eString> names = importer.getClassList();
    _eSet<_eString> all;
    for (int i = 0; i < names.size(); ++i) {
        all.add(names.get(i));
        bool generated = false;
        if (i < 8) importer.generateClassFile(directory, names.get(i), generated);
    }
    if (!names.isEmpty()) importer.renderClassFile(directory, names.get(0));
    bool generated = false;
    importer.generateSingleFile(directory, L"all", all, generated);
    importer.getErrorList(false);
    return 0;
}
