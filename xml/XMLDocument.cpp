#include "xml/XMLDocument.h"

#include <cassert>

#include <algorithm>
#include <set>
#include <utility>

#include "environment/PlatformText.h"
#include "runtime/StringUtils.h"
#include "xmi/ClassRenderer.h"
#include "xmi/Xmi1Reader.h"

const ModelReader& XMLDocument::modelReader() const {
    if (!reader) reader = Xmi1PathReader::recognise(*root);
    return *reader;
}

void XMLDocument::analyse() {
    _eFreeze freeze(this);
    analysed = true;
    found = modelReader().readsDocument() ? modelReader().classes() : ModelClasses();
    classes = found.byName;
    if (!namesMadeSafe) return;
    names = std::make_shared<const ModelNames>(found, modelReader());
    classes = names->classMap();
}

_eString XMLDocument::nameOf(const XMLElement& element) const {
    return names ? names->className(element) : modelReader().className(element);
}

const _eHndl<XMLDictionary>& XMLDocument::getDictionary() const {
    if (analysed && dictionary.isNull()) dictionary = root->dictionary(L"xmi.id", modelReader().countsExtensionIds());
    return dictionary;
}

void XMLDocument::addError(const _eHndl<XMLError>& error) {
    _eFreeze freeze(this);
    XMLNode::addError(error);
    generationErrors.add(error);
}

void XMLDocument::addErrors(const XMLErrors& newErrors) {
    _eFreeze freeze(this);
    XMLNode::addErrors(newErrors);
    generationErrors.addAll(newErrors);
}

bool XMLDocument::startGeneration() {
    _eFreeze freeze(this);
    generationErrors = XMLErrors();
    if (modelReader().readsDocument()) return true;
    addError(_eHndl<XMLError>(new XMLError(getLocation(), XMLErrorType::notXMI)));
    return false;
}

_eHndl<Context> XMLDocument::generationContext() const {
    if (!modelReader().readsXmi1Ids()) return _eHndl<Context>(new Context());
    const _eHndl<XMLDictionary>& built = getDictionary();
    return _eHndl<Context>(new Context(built.isNull() ? XMLDictionary::empty() : built));
}

// The class map holds only classes the reader found, so the lookup of its element succeeds.
_eHndl<TarvaneOutput> XMLDocument::declaration(const _eString& className) const {
    auto [index, end] = classes.lookup(className);
    if (index == end) return TarvaneOutput::empty();
    const FoundClass* at = found.find(*classes.at(index).second);
    assert(at != nullptr);
    ClassRecord record = modelReader().readClass(*at, generationContext());
    if (names) record = names->apply(std::move(record), *at->element);
    return ClassRenderer::classDeclaration(record);
}

void XMLDocument::write(const TarvaneOutput& output, const FileName& file, const FileName& sourceFile,
                        const _eHndl<const Environment>& environment, const ImportOptions& options) {
    XMLErrors errors;
    output.writeFile(options, file, sourceFile, environment, errors);
    addErrors(errors);
}

// The one place where a name the model gives becomes a file: a name that would make a path of
// its own names no file, so that no class is written outside the directory given.
bool XMLDocument::namesOneFile(const _eString& className) {
    if (textIs(className, L".") || textIs(className, L"..")) return false;
    for (int i = 0, n = className.size(); i < n; ++i)
        if (className.get(i) == L'/' || className.get(i) == 0) return false;
    return true;
}

void XMLDocument::generateClassFile(const _eString& className, const _eString& outputDirectory,
                                    const FileName& sourceFile, const _eHndl<const Environment>& environment,
                                    const ImportOptions& options) {
    if (!startGeneration()) return;
    if (!namesOneFile(className)) {
        XMLErrors refused;
        ::addError(refused, Location::nowhere(), XMLErrorType::fileName, {className + L".tv"});
        addErrors(refused);
        return;
    }
    write(*declaration(className), FileName(outputDirectory, className, L"tv", environment.get()), sourceFile,
          environment, options);
}

std::string XMLDocument::renderClassFile(const _eString& className, const _eString& outputDirectory,
                                         const FileName& sourceFile, const Environment& environment,
                                         const ImportOptions& options) const {
    if (!modelReader().readsDocument() || !namesOneFile(className)) return {};
    return declaration(className)->render(options, FileName(outputDirectory, className, L"tv", &environment),
                                          sourceFile, environment);
}

void XMLDocument::generateSingleFile(const FileName& targetFile, const Names& classNames, const FileName& sourceFile,
                                     const _eHndl<const Environment>& environment, const ImportOptions& options) {
    if (!startGeneration()) return;
    write(*declarations(classNames), targetFile, sourceFile, environment, options);
}

_eHndl<TarvaneOutput> XMLDocument::declarations(const Names& classNames) const {
    // A document that a failed parse left unanalysed is walked all the same, its ids unknown.
    ModelClasses walked = analysed ? ModelClasses() : modelReader().classes();
    _eHndl<Context> context = generationContext();
    _eHndl<TarvaneOutput> output = TarvaneOutput::empty();
    for (const FoundClass& each : (analysed ? found : walked).inOrder)
        if (classNames.contains(nameOf(*each.element))) {
            ClassRecord record = modelReader().readClass(each, context);
            if (names) record = names->apply(std::move(record), *each.element);
            output = output->concat(*ClassRenderer::classDeclaration(record));
        }
    return output;
}

TarvaneOutput::Layout XMLDocument::layOutFile(const _eSeq<_eString>& classNames, bool single, const FileName& file,
                                              const FileName& sourceFile, const Environment& environment,
                                              const ImportOptions& options) const {
    if (!modelReader().readsDocument() || classNames.isEmpty()) return {};
    Names chosen;
    for (int i = 0; i < classNames.size(); ++i) chosen.add(classNames.at(i));
    _eHndl<TarvaneOutput> output = single ? declarations(chosen) : declaration(classNames.at(0));
    return output->layOut(options, file, sourceFile, environment);
}

std::size_t XMLDocument::otherFilesSought() const { return modelReader().otherFilesSought(); }

_eString XMLDocument::classId(const _eString& className) const {
    for (const Declaration& each : declaration(className)->declarations())
        if (each.part == DeclarationPart::classHead) return each.id;
    return {};
}

// Every class is read and rendered once more: what it names that the text can't carry shows
// only then.
std::vector<ReportKind> XMLDocument::leftOut(const Names& builtInNames, bool searchedAnywhere) const {
    if (!analysed || !modelReader().readsDocument()) return {};
    ReportKind dropped{L"classes dropped by the built-in names (Boolean, Byte, Character, Double, Integer, String, "
                       L"bag, bool, map, pair, real, seq, set, triple)", {}};
    ReportKind elsewhere{L"classes off the one path of XMI 1.x, which the search anywhere finds", {}};
    ReportKind placeholders{L"classes with placeholders (\"?\") where the model lacks a name, a type or a value", {}};
    ReportKind renamed{L"names changed", {}};
    ReportKind unresolved{L"files that would resolve references left unresolved", {}};
    if (!searchedAnywhere && modelReader().readsXmi1Ids()) {
        std::shared_ptr<const ModelReader> anywhere = Xmi1AnywhereReader::recognise(*root);
        for (const FoundClass& each : anywhere->classes().inOrder)
            if (found.find(*each.element) == nullptr) elsewhere.items.push_back(anywhere->className(*each.element));
    }
    std::set<std::wstring> seen;
    auto rename = [&](const ModelNames::Change& change) {
        if (seen.insert(toWString(change.written + L"\n" + change.given)).second)
            renamed.items.push_back(change.written + L" as " + change.given);
    };
    if (names)
        for (const ModelNames::Change& change : names->classChanges()) rename(change);
    _eHndl<Context> context = generationContext();
    std::unordered_set<std::wstring> carried;
    for (const FoundClass& each : found.inOrder) {
        _eString name = nameOf(*each.element);
        if (builtInNames.contains(name)) {
            dropped.items.push_back(name);
            continue;
        }
        ClassRecord written = modelReader().readClass(each, context);
        ModelReport::addCarried(written, carried);
        ClassRecord given = names ? names->apply(written, *each.element) : written;
        if (names)
            for (const ModelNames::Change& change : ModelNames::memberChanges(written, given)) rename(change);
        int unknown = ClassRenderer::unknownCount(given);
        if (unknown > 0) placeholders.items.push_back(name + L" (" + intToString(unknown) + L")");
    }
    std::vector<std::pair<std::string, int>> byFile;  // in the order first met
    for (const UnresolvedReference& reference : modelReader().unresolvedReferences()) {
        std::string file = reference.where.empty() ? "this model's ids" : reference.where;
        auto at = std::find_if(byFile.begin(), byFile.end(), [&](const auto& each) { return each.first == file; });
        if (at == byFile.end()) at = byFile.insert(byFile.end(), {file, 0});
        ++at->second;
    }
    for (const auto& [file, count] : byFile)
        unresolved.items.push_back(fromPlatformText(file) + L" (" + intToString(count) + L")");
    std::vector<ReportKind> kinds = ModelReport::elementsLeftOut(*root, modelReader(), carried);
    for (ReportKind* kind : {&dropped, &elsewhere, &unresolved, &placeholders, &renamed}) kinds.push_back(*kind);
    return kinds;
}
