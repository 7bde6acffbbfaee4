#include "xml/XMLDocument.h"

#include <cassert>

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
    return ClassRenderer::classDeclaration(names ? names->apply(record, *at->element) : record);
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
    // A document that a failed parse left unanalysed is walked all the same, its ids unknown.
    ModelClasses walked = analysed ? ModelClasses() : modelReader().classes();
    _eHndl<Context> context = generationContext();
    _eHndl<TarvaneOutput> output = TarvaneOutput::empty();
    for (const FoundClass& each : (analysed ? found : walked).inOrder)
        if (classNames.contains(nameOf(*each.element))) {
            ClassRecord record = modelReader().readClass(each, context);
            output = output->concat(*ClassRenderer::classDeclaration(names ? names->apply(record, *each.element) : record));
        }
    write(*output, targetFile, sourceFile, environment, options);
}
