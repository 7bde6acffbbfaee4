// `XMLDocument`: the top of the tree that the parser delivers: the root element, the id
// dictionary and the class map; it starts generation.
#pragma once

#include "output/TarvaneOutput.h"
#include "xmi/ModelNames.h"
#include "xmi/ModelReport.h"
#include "xmi/ModelReader.h"
#include "xmi/XMLDictionary.h"

class XMLDocument : public _eClass<XMLDocument, XMLNode> {
public:
    static constexpr _aTypeSlot _aType{&_aModule19, 0};

    XMLDocument(const Position& position, const _eFrom<XMLElement>& root) : _eClass(position), root(root) {}

    bool equalFields(const XMLDocument& other) const {
        return XMLNode::equalFields(other) && root == other.root && getDictionary() == other.getDictionary() &&
               classes == other.classes;
    }

    // Writes the file of one class into `outputDirectory`, laid out by `options`. A class whose
    // name holds a "/", or is "." or "..", gets no file: a `fileName` error names it.
    virtual void generateClassFile(const _eString& className, const _eString& outputDirectory,
                                   const FileName& sourceFile, const _eHndl<const Environment>& environment,
                                   const ImportOptions& options);
    // Writes one file with the chosen classes, in document order.
    virtual void generateSingleFile(const FileName& targetFile, const Names& classNames, const FileName& sourceFile,
                                    const _eHndl<const Environment>& environment, const ImportOptions& options);
    // The text of the file of one class, as `generateClassFile` would write it into
    // `outputDirectory`; empty when the reader doesn't read the document or the name is refused.
    std::string renderClassFile(const _eString& className, const _eString& outputDirectory, const FileName& sourceFile,
                                const Environment& environment, const ImportOptions& options) const;
    // The file that `generateClassFile` writes for the one class named, or that
    // `generateSingleFile` writes for several (`single`), laid out in memory with where each
    // declaration stands; empty when the reader doesn't read the document.
    TarvaneOutput::Layout layOutFile(const _eSeq<_eString>& classNames, bool single, const FileName& file,
                                     const FileName& sourceFile, const Environment& environment,
                                     const ImportOptions& options) const;
    // The id of the class of that name, as its declaration carries it.
    _eString classId(const _eString& className) const;
    // Builds the class map, with the classes that the chosen reader finds; the dictionary follows
    // when it is first asked for.
    virtual void analyse();
    // How the classes of the document are found and read, by `analyse` and by generation; until
    // one is chosen, along the one path of XMI 1.x. With `safeNames`, every name the text
    // carries is made an identifier and same-named classes are told apart by their packages.
    void chooseReader(const std::shared_ptr<const ModelReader>& modelReader, bool safeNames = false) {
        reader = modelReader;
        namesMadeSafe = safeNames;
    }
    // What the text of the classes leaves out of the model, by kind (see `ModelReport`):
    // `builtInNames` are the names of the classes the class list drops. Unless the classes were
    // `searchedAnywhere`, those of an XMI 1.x document that stand off its one path are named.
    std::vector<ReportKind> leftOut(const Names& builtInNames, bool searchedAnywhere) const;
    // The names changed, once `analyse` has made them safe; null otherwise.
    const ModelNames* getNames() const { return names.get(); }
    virtual ClassMap getClasses() const { return classes; }
    // Every error joins those of the document, and those of the generation under way.
    void addError(const _eHndl<XMLError>& error) override;
    void addErrors(const XMLErrors& newErrors) override;
    // How many times reading the classes looked for another file: a text read then depends on
    // more than the document.
    std::size_t otherFilesSought() const;
    // The errors of the last generation alone.
    const XMLErrors& lastGenerationErrors() const { return generationErrors; }

    const _eFrom<XMLElement>& getRoot() const { return root; }
    // The id dictionary of the tree, built on the first request after `analyse`; null before.
    const _eHndl<XMLDictionary>& getDictionary() const;

    // The name of a class stands for one file in the directory given: no separator, no unit 0,
    // neither "." nor "..".
    static bool namesOneFile(const _eString& className);

private:
    // Starts a generation: its errors stand alone in `lastGenerationErrors`. False, with a
    // `notXMI` error, when the reader doesn't read the document: its root isn't "XMI".
    bool startGeneration();
    const ModelReader& modelReader() const;
    // A fresh context on the dictionary; on the empty one before `analyse`.
    _eHndl<Context> generationContext() const;
    // The name a class element found is known by.
    _eString nameOf(const XMLElement& element) const;
    // The declaration of the class of that name; empty when there is none.
    _eHndl<TarvaneOutput> declaration(const _eString& className) const;
    // The declarations of the classes named, in document order.
    _eHndl<TarvaneOutput> declarations(const Names& classNames) const;
    void write(const TarvaneOutput& output, const FileName& file, const FileName& sourceFile,
               const _eHndl<const Environment>& environment, const ImportOptions& options);

    _eFrom<XMLElement> root;
    bool analysed = false;
    mutable _eHndl<XMLDictionary> dictionary;  // null until asked for after `analyse`
    ClassMap classes;                          // class name to class element
    mutable std::shared_ptr<const ModelReader> reader;  // how classes are found and read; null: the path of XMI 1.x
    ModelClasses found;                        // what the reader found, in order, with where each stands
    bool namesMadeSafe = false;                // names are made safe at analysis
    std::shared_ptr<const ModelNames> names;   // the names made safe; null when they aren't
    XMLErrors generationErrors;                // of the last generation alone
};
