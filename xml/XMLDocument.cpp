#include "xml/XMLDocument.h"

void XMLDocument::analyse() {
    _eFreeze freeze(this);
    analysed = true;
    classes = search->readsDocument(*root) ? search->classMap(*root) : ClassMap();
}

const _eHndl<XMLDictionary>& XMLDocument::getDictionary() const {
    if (analysed && dictionary.isNull()) dictionary = search->dictionary(*root);
    return dictionary;
}

bool XMLDocument::rootIsXMI() {
    if (search->readsDocument(*root)) return true;
    addError(_eHndl<XMLError>(new XMLError(getLocation(), XMLErrorType::notXMI)));
    return false;
}

_eHndl<Context> XMLDocument::generationContext() const {
    const _eHndl<XMLDictionary>& built = getDictionary();
    return _eHndl<Context>(new Context(built.isNull() ? XMLDictionary::empty() : built));
}

void XMLDocument::write(const TarvaneOutput& output, const FileName& file, const FileName& sourceFile,
                        const _eHndl<const Environment>& environment, const ImportOptions& options) {
    XMLErrors errors;
    output.writeFile(options, file, sourceFile, environment, errors);
    addErrors(errors);
}

void XMLDocument::generateClassFile(const _eString& className, const _eString& outputDirectory,
                                    const FileName& sourceFile, const _eHndl<const Environment>& environment,
                                    const ImportOptions& options) {
    if (!rootIsXMI()) return;
    _eHndl<Context> context = generationContext();
    auto [index, end] = classes.lookup(className);
    _eHndl<TarvaneOutput> output = TarvaneOutput::empty();
    if (index != end) output = search->declaration(*classes.at(index).second, context);
    write(*output, FileName(outputDirectory, className, L"tv", environment.get()), sourceFile, environment, options);
}

std::string XMLDocument::renderClassFile(const _eString& className, const _eString& outputDirectory,
                                         const FileName& sourceFile, const Environment& environment,
                                         const ImportOptions& options) const {
    if (!search->readsDocument(*root)) return {};
    auto [index, end] = classes.lookup(className);
    _eHndl<TarvaneOutput> output = TarvaneOutput::empty();
    if (index != end) output = search->declaration(*classes.at(index).second, generationContext());
    return output->render(options, FileName(outputDirectory, className, L"tv", &environment), sourceFile, environment);
}

void XMLDocument::generateSingleFile(const FileName& targetFile, const Names& classNames, const FileName& sourceFile,
                                     const _eHndl<const Environment>& environment, const ImportOptions& options) {
    if (!rootIsXMI()) return;
    _eHndl<Context> context = generationContext();
    write(*search->declarations(*root, classNames, context), targetFile, sourceFile, environment, options);
}
