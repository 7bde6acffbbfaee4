#include "xmi/Xmi2Reader.h"

#include "runtime/StringUtils.h"
#include "xmi/ClassRenderer.h"

namespace {

using XmiNames::local;
using XmiNames::prefix;

// A namespace of XMI 2: "http://schema.omg.org/spec/XMI/2.1", "http://www.omg.org/spec/XMI/20131001".
bool isXmiNamespace(const std::wstring& uri) { return uri.find(L"/XMI/") != std::wstring::npos; }

// A namespace of the UML metamodel: ".../UML" or ".../UML/VERSION"
// ("http://www.eclipse.org/uml2/5.0.0/UML", "http://www.omg.org/spec/UML/20131001"), but not
// a profile below it (".../UML/20131001/StandardProfile").
bool isUmlNamespace(const std::wstring& uri) {
    for (std::size_t at = uri.find(L"/UML"); at != std::wstring::npos; at = uri.find(L"/UML", at + 1)) {
        std::size_t rest = at + 4;
        if (rest == uri.size()) return true;
        if (uri[rest] == L'/' && uri.find(L'/', rest + 1) == std::wstring::npos && rest + 1 < uri.size()) return true;
    }
    return false;
}

TypeRecord libraryType(const _eString& name) { return {TypeRecord::library, NameRecord::plain(name), false, {}}; }

const TypeRecord unresolvedType = TypeRecord::unresolvedReference();

}  // namespace

std::shared_ptr<const ModelReader> Xmi2Reader::recognise(const XMLElement& root, const ModelSource& source) {
    Names xmiPrefixes;
    Names umlPrefixes;
    const AttributeMap& attributes = root.getAttributes();
    for (int i = 0, n = attributes.size(); i < n; ++i) {
        const _eString& name = attributes.at(i).first;
        _eString bound;
        if (textIs(name, L"xmlns"))
            bound = {};
        else if (textIs(prefix(name), L"xmlns"))
            bound = local(name);
        else
            continue;
        std::wstring uri = toWString(root.attributeText(name, Context::shared()));
        if (isXmiNamespace(uri)) xmiPrefixes.add(bound);
        if (isUmlNamespace(uri)) umlPrefixes.add(bound);
    }
    _eString rootPrefix = prefix(root.getName());
    if (textIs(local(root.getName()), L"XMI") && xmiPrefixes.contains(rootPrefix))
        return std::make_shared<const Xmi2Reader>(root, rootPrefix, umlPrefixes, source);
    if (!umlPrefixes.contains(rootPrefix)) return nullptr;
    for (int i = 0, n = xmiPrefixes.size(); i < n; ++i)
        if (root.hasAttribute(xmiPrefixes.at(i) + L":version"))
            return std::make_shared<const Xmi2Reader>(root, xmiPrefixes.at(i), umlPrefixes, source);
    return nullptr;
}

Xmi2Reader::Xmi2Reader(const XMLElement& root, const _eString& xmiPrefix, const Names& umlPrefixes,
                       const ModelSource& source)
    : ModelReader(root),
      vocabulary(xmiPrefix, umlPrefixes),
      idrefKey(xmiPrefix + L":idref"),
      parts(partsOf(source.extensions)) {
    if (source.extensions.crossFileTypes) libraries = std::make_shared<TypeLibraries>(source);
    findClasses();
}

std::size_t Xmi2Reader::otherFilesSought() const { return libraries ? libraries->filesSought() : 0; }

// Without the libraries, by the fragment after its "#"; with them, by the name the file or
// library gives it, "?" where none does.
TypeRecord Xmi2Reader::hrefType(const _eString& href) const {
    if (!libraries) {
        int hash = -1;
        for (int i = 0, n = href.size(); i < n; ++i)
            if (href.get(i) == L'#') hash = i;
        return libraryType(href.drop(hash + 1));
    }
    std::string where;
    if (std::optional<_eString> name = libraries->typeName(href, where)) return libraryType(*name);
    noteUnresolved(href, where);
    return unresolvedType;
}

// An id that names nothing in the document: with the libraries, a well-known primitive id.
TypeRecord Xmi2Reader::idType(const _eString& id) const {
    _eFrom<XMLElement> target = lookup(id);
    if (!target.isNull()) return typeOfElement(*target);
    if (!libraries) return unresolvedType;
    if (std::optional<_eString> name = TypeLibraries::wellKnownId(id)) return libraryType(*name);
    noteUnresolved(id, {});
    return unresolvedType;
}

void Xmi2Reader::noteUnresolved(const _eString& reference, const std::string& where) const {
    std::lock_guard<std::mutex> lock(unresolvedLock);
    if (unresolvedSeen.insert(toWString(reference)).second) unresolved.push_back({reference, where});
}

std::vector<UnresolvedReference> Xmi2Reader::unresolvedReferences() const {
    std::lock_guard<std::mutex> lock(unresolvedLock);
    return unresolved;
}

// Depth first, each element done after its children. An element of another namespace, and
// every element within it, is never a class nor holds one: the walk passes them over. The root,
// "xmi:XMI" or a model, holds the document.
void Xmi2Reader::findClasses() {
    struct Open {
        _eString kind;       // the metaclass of an element entered
        bool ofModel;        // false: an element of another namespace, passed over whole
        ElementSeq holding;  // its children done that are or hold classes
    };
    std::vector<Open> open;
    walkTree(
        *root,
        [&](const XMLElement& element) {
            bool ofModel = true;
            _eString kind = &element == root.get() ? _eString() : vocabulary.metaclass(element, ofModel);
            open.push_back({kind, ofModel, {}});
            return ofModel ? WalkChildren(*element.getContent()) : WalkChildren();
        },
        [&](const XMLElement& element) {
            Open done = open.back();
            open.pop_back();
            if (!done.ofModel) return;
            bool holds = !done.holding.isEmpty();
            if (holds) holding[&element] = done.holding;
            bool isClassElement = declares(done.kind) && defines(element) &&
                                  (!textIs(done.kind, L"Enumeration") || !vocabulary.properties(element, L"ownedLiteral").isEmpty());
            if (isClassElement) classElements.insert(&element);
            if (textIs(done.kind, L"Association") || (parts.associationClasses && textIs(done.kind, L"AssociationClass")))
                associationElements.push_back(&element);
            if (!open.empty() && (holds || isClassElement))
                open.back().holding.pushBack(const_cast<XMLElement*>(&element));
        });
}

// Every element's id, foreign ones too; then the associations by their ends.
const Xmi2Reader::Lookups& Xmi2Reader::lookups() const {
    std::call_once(lookupsBuilt, [this] {
        auto tables = std::make_unique<Lookups>();
        tables->ids = IdIndex(*root, vocabulary.idKey());
        for (const XMLElement* element : associationElements) indexAssociation(*element, *tables);
        if (!(parts == ModelParts())) gatherAnnotations(*tables);
        built = std::move(tables);
    });
    return *built;
}

_eString Xmi2Reader::definedKind(const XMLElement& element, bool& descend) const {
    bool ofModel = true;
    _eString kind = &element == root.get() ? _eString() : vocabulary.metaclass(element, ofModel);
    descend = ofModel;
    return ofModel && defines(element) ? kind : _eString();
}

bool Xmi2Reader::defines(const XMLElement& element) const {
    return element.hasAttribute(vocabulary.idKey()) && !element.hasAttribute(idrefKey) && !element.hasAttribute(L"href");
}

bool Xmi2Reader::isClass(const XMLElement& element) const { return classElements.count(&element) != 0; }

WalkChildren Xmi2Reader::descent(const XMLElement& element) const {
    auto found = holding.find(&element);
    return found == holding.end() ? WalkChildren() : WalkChildren(found->second);
}

bool Xmi2Reader::isPackage(const XMLElement& element) const {
    return &element != root.get() && textIs(vocabulary.metaclass(element), L"Package");
}

NameRecord Xmi2Reader::readName(const XMLElement& element) const {
    std::optional<_eString> name = vocabulary.property(element, L"name");
    return name ? NameRecord::plain(*name) : NameRecord();
}

bool Xmi2Reader::declares(const _eString& kind) const {
    return textIs(kind, L"Class") || (parts.interfaces && textIs(kind, L"Interface")) ||
           (parts.associationClasses && textIs(kind, L"AssociationClass")) ||
           (parts.enumerations && textIs(kind, L"Enumeration"));
}

// A class reads as a class, and so does a declared interface (never a leaf) or association
// class; anything else by its name.
TypeRecord Xmi2Reader::typeOfElement(const XMLElement& target) const {
    TypeRecord record;
    _eString kind = vocabulary.metaclass(target);
    record.name = readName(target);
    bool isInterface = parts.interfaces && textIs(kind, L"Interface");
    bool classLike = textIs(kind, L"Class") || isInterface || (parts.associationClasses && textIs(kind, L"AssociationClass"));
    record.kind = classLike ? TypeRecord::classType : TypeRecord::named;
    record.leaf = classLike && !isInterface && XmiWords::flag(vocabulary.property(target, L"isLeaf", L"false"));
    record.id = vocabulary.id(target);
    return record;
}

// By attribute, the id it holds; by element, the one child's "xmi:idref" or "href". More than
// one child, or an id that names nothing, is unresolved.
TypeRecord Xmi2Reader::readReference(const XMLElement& element, const wchar_t* name) const {
    if (element.hasAttribute(name)) return idType(element.attributeText(name, Context::shared()));
    ElementSeq written = vocabulary.properties(element, name);
    if (written.isEmpty()) return {};
    if (written.size() != 1) return unresolvedType;
    const XMLElement& reference = *written.get(0);
    if (reference.hasAttribute(idrefKey)) return idType(reference.attributeText(idrefKey, Context::shared()));
    if (!reference.hasAttribute(L"href")) return unresolvedType;
    TypeRecord type = hrefType(reference.attributeText(L"href", Context::shared()));
    // An interface in another file reads as a class that isn't a leaf, as one in this file does.
    if (parts.interfaces && type.resolved() && textIs(vocabulary.metaclass(reference), L"Interface"))
        type.kind = TypeRecord::classType;
    return type;
}

_eString Xmi2Reader::typeId(const XMLElement& element) const {
    _eSeq<_eString> named = vocabulary.references(element, L"type");
    return named.size() == 1 ? named.get(0) : _eString();
}

int Xmi2Reader::typeCount(const XMLElement& element) const {
    return element.hasAttribute(L"type") ? 1 : vocabulary.properties(element, L"type").size();
}

std::optional<_eString> Xmi2Reader::bound(const XMLElement& element, const wchar_t* name, const wchar_t* absent,
                                          bool& found) const {
    ElementSeq written = vocabulary.properties(element, name);
    if (written.size() > 1) found = false;
    if (written.isEmpty()) return _eString(absent);
    if (written.size() != 1) return std::nullopt;
    return vocabulary.property(*written.get(0), L"value", L"0");
}

// Without "lowerValue" the lower bound is 1, without "upperValue" the upper; a value element
// without a "value" holds 0.
MultiplicityRecord Xmi2Reader::readMultiplicity(const XMLElement& element) const {
    MultiplicityRecord record;
    record.single = true;
    record.lower = bound(element, L"lowerValue", L"1", record.single);
    record.upper = bound(element, L"upperValue", L"1", record.single);
    return record;
}

// The value of the one "defaultValue": a literal's "value", with the metamodel's default when
// it is left out, or the first "body" of an opaque expression; none otherwise.
std::optional<_eString> Xmi2Reader::defaultValue(const XMLElement& element) const {
    ElementSeq written = vocabulary.properties(element, L"defaultValue");
    if (written.size() != 1) return std::nullopt;
    const XMLElement& value = *written.get(0);
    _eString kind = vocabulary.metaclass(value);
    if (textIs(kind, L"LiteralInteger") || textIs(kind, L"LiteralUnlimitedNatural") || textIs(kind, L"LiteralReal"))
        return vocabulary.property(value, L"value", L"0");
    if (textIs(kind, L"LiteralBoolean")) return vocabulary.property(value, L"value", L"false");
    if (textIs(kind, L"LiteralString")) return vocabulary.property(value, L"value");
    if (!textIs(kind, L"OpaqueExpression")) return std::nullopt;
    if (value.hasAttribute(L"body")) return value.attributeText(L"body", Context::shared());
    ElementSeq bodies = vocabulary.properties(value, L"body");
    if (bodies.isEmpty()) return std::nullopt;
    return bodies.get(0)->getContent()->text();
}

bool Xmi2Reader::isAssociationEnd(const XMLElement& element) const {
    return element.hasAttribute(L"association") ||
           (element.hasAttribute(vocabulary.idKey()) && lookups().endIds.contains(vocabulary.id(element)));
}

Visibility Xmi2Reader::visibility(const XMLElement& element) const {
    return XmiWords::visibility(vocabulary.property(element, L"visibility", L"public"));
}

AttributeRecord Xmi2Reader::readAttribute(const XMLElement& element) const {
    AttributeRecord record;
    record.id = vocabulary.id(element);
    record.name = readName(element);
    record.visibility = visibility(element);
    record.changeability = XmiWords::flag(vocabulary.property(element, L"isReadOnly", L"false")) ? Changeability::frozen
                                                                                                : Changeability::changeable;
    record.initialValue = defaultValue(element);
    record.type = readReference(element, L"type");
    record.multiplicity = readMultiplicity(element);
    record.notes = readNotes(element);
    return record;
}

// A result is void without a type, with a type that reads "void", or with a type attribute
// whose id names nothing.
ParameterRecord Xmi2Reader::readParameter(const XMLElement& element) const {
    ParameterRecord record;
    record.id = vocabulary.id(element);
    record.name = readName(element);
    // Some exporters write the direction as "kind", the name UML 1.x gives it.
    std::optional<_eString> direction = vocabulary.property(element, L"direction");
    if (!direction) direction = vocabulary.property(element, L"kind");
    record.direction = XmiWords::direction(direction.value_or(_eString(L"in")));
    record.type = readReference(element, L"type");
    if (record.direction != Direction::result) return record;
    bool untyped = typeCount(element) == 0;
    bool unknownById = element.hasAttribute(L"type") && !record.type.resolved();
    record.voidResult = untyped || unknownById || ClassRenderer::readsVoid(record.type);
    return record;
}

OperationRecord Xmi2Reader::readOperation(const XMLElement& element) const {
    OperationRecord record;
    record.id = vocabulary.id(element);
    record.name = readName(element);
    record.visibility = visibility(element);
    record.isAbstract = XmiWords::flag(vocabulary.property(element, L"isAbstract", L"false"));
    record.isLeaf = XmiWords::flag(vocabulary.property(element, L"isLeaf", L"false"));
    record.scope = XmiWords::flag(vocabulary.property(element, L"isStatic", L"false")) ? Scope::classifier : Scope::instance;
    ElementSeq parameters = vocabulary.properties(element, L"ownedParameter");
    for (int i = 0, n = parameters.size(); i < n; ++i) record.parameters.push_back(readParameter(*parameters.get(i)));
    record.notes = readNotes(element);
    return record;
}

// UML 2 marks the whole of an aggregation on the end typed by the part: the end that UML 1.x
// marks is the other one.
AssociationRecord Xmi2Reader::readAssociation(const Association& association) const {
    AssociationRecord record;
    record.id = association.id;
    for (int i = 0, n = association.ends.size(); i < n; ++i) {
        const XMLElement& end = *association.ends.get(i);
        AssociationEndRecord endRecord;
        endRecord.id = vocabulary.id(end);
        endRecord.name = readName(end);
        endRecord.visibility = visibility(end);
        bool ownedByClass = textIs(local(end.getName()), L"ownedAttribute");
        bool listed = end.hasAttribute(vocabulary.idKey()) && association.navigableOwnedEnds.contains(vocabulary.id(end));
        endRecord.isNavigable = ownedByClass || listed || XmiWords::flag(vocabulary.property(end, L"isNavigable", L"false"));
        _eString aggregation =
            n == 2 ? vocabulary.property(*association.ends.get(1 - i), L"aggregation", L"none") : _eString(L"none");
        endRecord.aggregation = textIs(aggregation, L"shared") ? Aggregation::shared : XmiWords::aggregation(aggregation);
        endRecord.typeId = typeId(end);
        endRecord.singleType = typeCount(end) == 1;
        endRecord.type = readReference(end, L"type");
        if (endRecord.singleType) endRecord.roleType = endRecord.type;
        endRecord.multiplicity = readMultiplicity(end);
        record.ends.push_back(endRecord);
    }
    return record;
}

// An association by the ends its "memberEnd" lists (or, when it lists none, by its own ends),
// and by the classes their types name.
void Xmi2Reader::indexAssociation(const XMLElement& element, Lookups& tables) const {
    Association association;
    association.id = vocabulary.id(element);
    _eSeq<_eString> members = vocabulary.references(element, L"memberEnd");
    ElementSeq candidates;
    if (members.isEmpty()) candidates = vocabulary.properties(element, L"ownedEnd");
    for (int i = 0, n = members.size(); i < n; ++i) {
        tables.endIds.add(members.get(i));
        _eFrom<XMLElement> end = tables.ids.find(members.get(i));
        if (!end.isNull()) candidates.pushBack(end);
    }
    for (int i = 0, n = candidates.size(); i < n; ++i)
        if (typeCount(*candidates.get(i)) > 0) association.ends.pushBack(candidates.get(i));
    _eSeq<_eString> navigable = vocabulary.references(element, L"navigableOwnedEnd");
    for (int i = 0, n = navigable.size(); i < n; ++i) association.navigableOwnedEnds.add(navigable.get(i));
    int index = int(tables.associations.size());
    Names classIds;
    for (int i = 0, n = association.ends.size(); i < n; ++i) classIds.add(typeId(*association.ends.get(i)));
    for (int i = 0, n = classIds.size(); i < n; ++i) tables.byClassId[toWString(classIds.at(i))].push_back(index);
    tables.associations.push_back(association);
}

// Its attributes, then its operations, then the members its associations give, then its
// generalizations' parents and the interfaces it realises, each in document order; an
// enumeration's literals.
ClassRecord Xmi2Reader::readClass(const FoundClass& found, const _eHndl<Context>&) const {
    const XMLElement& element = *found.element;
    ClassRecord record;
    _eString kind = vocabulary.metaclass(element);
    if (textIs(kind, L"Interface")) record.kind = ClassKind::interface;
    if (textIs(kind, L"AssociationClass")) record.kind = ClassKind::associationClass;
    if (textIs(kind, L"Enumeration")) record.kind = ClassKind::enumeration;
    record.id = vocabulary.id(element);
    record.name = readName(element);
    record.isLeaf = XmiWords::flag(vocabulary.property(element, L"isLeaf", L"false"));
    record.isAbstract = XmiWords::flag(vocabulary.property(element, L"isAbstract", L"false"));
    record.notes = readNotes(element);
    record.packagePath = found.packagePath;
    ElementSeq literals = vocabulary.properties(element, L"ownedLiteral");
    for (int i = 0, n = literals.size(); i < n; ++i) {
        const XMLElement& literal = *literals.get(i);
        record.literals.push_back({vocabulary.id(literal), readName(literal), readNotes(literal)});
    }
    ElementSeq attributes = vocabulary.properties(element, L"ownedAttribute");
    for (int i = 0, n = attributes.size(); i < n; ++i)
        if (!isAssociationEnd(*attributes.get(i))) record.features.emplace_back(readAttribute(*attributes.get(i)));
    ElementSeq operations = vocabulary.properties(element, L"ownedOperation");
    for (int i = 0, n = operations.size(); i < n; ++i) record.features.emplace_back(readOperation(*operations.get(i)));
    ElementSeq generalizations = vocabulary.properties(element, L"generalization");
    for (int i = 0, n = generalizations.size(); i < n; ++i)
        record.parents.push_back({vocabulary.id(*generalizations.get(i)), readReference(*generalizations.get(i), L"general")});
    if (!element.hasAttribute(vocabulary.idKey())) return record;
    if (parts.interfaces) record.realizations = readRealizations(record.id);
    const Lookups& tables = lookups();
    auto at = tables.byClassId.find(toWString(record.id));
    if (at != tables.byClassId.end())
        for (int index : at->second)
            if (!(tables.associations[std::size_t(index)].id == record.id))
                record.associations.push_back(readAssociation(tables.associations[std::size_t(index)]));
    return record;
}

NotesRecord Xmi2Reader::readNotes(const XMLElement& element) const {
    NotesRecord notes;
    if (parts.documentation || parts.constraints) lookups().annotations.addTo(notes, vocabulary.id(element), parts, Context::shared());
    return notes;
}

// The body of its specification: the bodies of an opaque expression, one per line, with its
// language; the value of any other.
ConstraintRecord Xmi2Reader::readConstraint(const XMLElement& element) const {
    ConstraintRecord record;
    record.id = vocabulary.id(element);
    record.name = readName(element);
    ElementSeq specifications = vocabulary.properties(element, L"specification");
    if (specifications.size() != 1) return record;
    const XMLElement& specification = *specifications.get(0);
    if (specification.hasAttribute(L"body")) record.body = specification.attributeText(L"body", Context::shared());
    ElementSeq bodies = vocabulary.properties(specification, L"body");
    for (int i = 0, n = bodies.size(); i < n; ++i)
        record.body = record.body + (i > 0 ? L"\n" : L"") + bodies.get(i)->getContent()->text();
    if (specification.hasAttribute(L"body") || !bodies.isEmpty()) {
        std::optional<_eString> language = vocabulary.property(specification, L"language");
        if (!language) {
            ElementSeq languages = vocabulary.properties(specification, L"language");
            if (!languages.isEmpty()) language = languages.get(0)->getContent()->text();
        }
        record.language = language;
    } else {
        record.body = vocabulary.property(specification, L"value", L"");
    }
    return record;
}

// A realisation names an interface by its "contract", else its "supplier"; an interface
// realisation always counts, any other realisation only when it names an interface.
std::vector<GeneralizationRecord> Xmi2Reader::readRealizations(const _eString& classId) const {
    std::vector<GeneralizationRecord> out;
    const Lookups& tables = lookups();
    auto at = tables.realizations.find(toWString(classId));
    if (at == tables.realizations.end()) return out;
    for (const XMLElement* realization : at->second) {
        const wchar_t* property =
            realization->hasAttribute(L"contract") || !vocabulary.properties(*realization, L"contract").isEmpty()
                ? L"contract"
                : L"supplier";
        bool named = textIs(vocabulary.metaclass(*realization), L"InterfaceRealization") ||
                     textIs(XmiNames::local(realization->getName()), L"interfaceRealization");
        // What the realisation names: the element of its one id, else its one reference written
        // as an element (an "href" into another file carries its metaclass).
        _eSeq<_eString> ids = vocabulary.references(*realization, property);
        ElementSeq written = vocabulary.properties(*realization, property);
        _eFrom<XMLElement> target = ids.size() == 1 ? lookup(ids.get(0)) : _eFrom<XMLElement>();
        if (target.isNull() && written.size() == 1) target = written.get(0);
        named = named || (!target.isNull() && textIs(vocabulary.metaclass(*target), L"Interface"));
        if (named) out.push_back({vocabulary.id(*realization), readReference(*realization, property)});
    }
    return out;
}

// One walk over the whole document, the tools' records too: what stands in an element names it
// when it names nothing else.
void Xmi2Reader::gatherAnnotations(Lookups& tables) const {
    struct Open {
        _eString owner;  // the innermost element with an id
        bool foreign;    // within an element of another namespace
    };
    std::vector<Open> open{{_eString(), false}};
    walkTree(
        *root,
        [&](const XMLElement& element) {
            bool ofModel = true;
            _eString kind = &element == root.get() ? _eString() : vocabulary.metaclass(element, ofModel);
            ofModel = ofModel && !open.back().foreign;
            _eString tag = local(element.getName());
            _eString id = vocabulary.id(element);
            auto targets = [&](const wchar_t* property) {
                _eSeq<_eString> named = vocabulary.references(element, property);
                std::vector<_eString> out;
                for (int i = 0, n = named.size(); i < n; ++i) out.push_back(named.get(i));
                if (out.empty()) out.push_back(open.back().owner);
                return out;
            };
            if (!ofModel) {
                // A tool's record of a model element ("xmi:idref"): its documentation as a
                // property or as the value of a child.
                if (element.hasAttribute(idrefKey)) {
                    _eString target = element.attributeText(idrefKey, Context::shared());
                    ElementSeq children = element.getContent()->childElements();
                    for (int i = 0, n = children.size(); i < n; ++i) {
                        const XMLElement& child = *children.get(i);
                        if (textIs(child.getName(), L"properties") && child.hasAttribute(L"documentation"))
                            tables.annotations.addComment(DictionaryKey(target), {}, child.attributeText(L"documentation", Context::shared()));
                        if (textIs(child.getName(), L"documentation") && child.hasAttribute(L"value"))
                            tables.annotations.addComment(DictionaryKey(target), {}, child.attributeText(L"value", Context::shared()));
                    }
                }
            } else if (textIs(kind, L"Comment") || textIs(tag, L"ownedComment")) {
                for (const _eString& target : targets(L"annotatedElement"))
                    tables.annotations.addComment(DictionaryKey(target), id, vocabulary.property(element, L"body", L""));
            } else if (textIs(kind, L"Constraint") || textIs(tag, L"ownedRule")) {
                for (const _eString& target : targets(L"constrainedElement"))
                    tables.annotations.addConstraint(DictionaryKey(target), readConstraint(element));
            } else if (textIs(kind, L"InterfaceRealization") || textIs(kind, L"Realization") ||
                       textIs(tag, L"interfaceRealization")) {
                for (const _eString& client : targets(L"client")) tables.realizations[toWString(client)].push_back(&element);
            }
            open.push_back({id.isEmpty() ? open.back().owner : id, !ofModel});
            return WalkChildren(*element.getContent());
        },
        [&](const XMLElement&) { open.pop_back(); });
}
