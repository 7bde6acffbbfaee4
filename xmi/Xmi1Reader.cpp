// The XMI 1.x readers, and what the element classes of a UML 1.x model read into the records
// of a class. Nothing here decides how anything reads in the target language; `ClassRenderer`
// does.
#include "xmi/Xmi1Reader.h"

#include <algorithm>
#include <cwctype>

#include "runtime/StringUtils.h"
#include "xmi/ClassRenderer.h"
#include "xmi/XMLDictionary.h"
#include "xmi/XmiHelpers.h"

namespace {

// The children of `content` named `name` that are elements of class `Element`: a child of that
// name written as an empty-element tag, or as a reference, reads as nothing.
template <class Element, class Visit>
void forEachChild(const XMLcontent& content, const wchar_t* name, Visit visit) {
    ElementSeq children = content.childrenNamed(name);
    for (int i = 0, n = children.size(); i < n; ++i)
        if (const auto* element = dynamic_cast<const Element*>(children.get(i).get())) visit(*element);
}

_eString idOf(const XMLElement& element) { return element.ownId(); }

// The text of a tagged value whose tag is `tag`: written by name ("tag", UML 1.3) or as a
// reference to a tag definition of that name (UML 1.4), its value in "value" or "dataValue".
std::optional<_eString> taggedValue(const XMLElement& element, const wchar_t* tag, const _eHndl<Context>& context) {
    static const _eString holder = L"UML:ModelElement.taggedValue";
    if (!element.getContent()->hasChild(holder)) return std::nullopt;
    ElementSeq values = element.getContent()->elementsAtPath({L"UML:ModelElement.taggedValue", L"UML:TaggedValue"});
    for (int i = 0, n = values.size(); i < n; ++i) {
        const XMLElement& value = *values.get(i);
        std::optional<_eString> name = value.propertyText(L"tag", L"UML:TaggedValue.tag", context);
        ElementSeq definitions = value.getContent()->elementsAtPath({L"UML:TaggedValue.type", L"UML:TagDefinition"});
        std::optional<_eString> definitionId;
        if (definitions.size() == 1 && definitions.get(0)->hasAttribute(L"xmi.idref"))
            definitionId = definitions.get(0)->attributeText(L"xmi.idref", context);
        else if (context->getParts().documentation && value.hasAttribute(L"type"))
            definitionId = value.attributeText(L"type", context);
        if (!name && definitionId) {
            _eFrom<XMLElement> definition = context->lookup(*definitionId);
            if (!definition.isNull()) name = definition->readName().text;
        }
        if (!name || !textIs(*name, tag)) continue;
        if (std::optional<_eString> text = value.propertyText(L"value", L"UML:TaggedValue.value", context)) return text;
        ElementSeq data = value.getContent()->childrenNamed(L"UML:TaggedValue.dataValue");
        if (data.size() == 1) return data.get(0)->getContent()->text();
        if (value.hasAttribute(L"dataValue")) return value.attributeText(L"dataValue", context);
    }
    return std::nullopt;
}

// In every form, an initial value written as an XML attribute, "initialValue" or "value"; an
// empty one is none.
std::optional<_eString> olderInitialValue(const XMLElement& element, const _eHndl<Context>& context) {
    for (const wchar_t* name : {L"initialValue", L"value"})
        if (std::optional<_eString> text = element.olderAttribute(name, context))
            if (!text->isEmpty()) return text;
    return std::nullopt;
}

MemberForms formsOf(const ImportExtensions& extensions) {
    return extensions.everyForm ? MemberForms::every : MemberForms::specified;
}

}  // namespace

namespace {

// The ids an element refers to in its XML attribute `attribute` (a list; none where it is null),
// else by the "xmi.idref" of the elements within its children `holder`, in order.
std::vector<_eString> referencedIds(const XMLElement& element, const wchar_t* attribute, const wchar_t* holder,
                                    const _eHndl<Context>& context) {
    std::vector<_eString> ids;
    if (attribute != nullptr && element.hasAttribute(attribute)) {
        _eSeq<_eString> words = XmiNames::words(element.attributeText(attribute, context));
        for (int i = 0, n = words.size(); i < n; ++i) ids.push_back(words.get(i));
        return ids;
    }
    ElementSeq holders = element.getContent()->childrenNamed(holder);
    for (int i = 0, n = holders.size(); i < n; ++i) {
        ElementSeq inner = holders.get(i)->getContent()->childElements();
        for (int k = 0, m = inner.size(); k < m; ++k)
            if (inner.get(k)->hasAttribute(L"xmi.idref")) ids.push_back(inner.get(k)->attributeText(L"xmi.idref", context));
    }
    return ids;
}

// The text of a comment: its body, by attribute or child; older exporters write it as the name.
_eString commentText(const XMLElement& comment, const _eHndl<Context>& context) {
    if (std::optional<_eString> body = comment.propertyText(L"body", L"UML:Comment.body", context)) return *body;
    NameRecord name = comment.readName();
    return name.form == NameRecord::attribute || name.form == NameRecord::element ? name.text : _eString();
}

// A constraint with the body and language of its expression, by attribute or child.
ConstraintRecord readConstraint(const XMLElement& constraint, const _eHndl<Context>& context) {
    ConstraintRecord record;
    record.id = idOf(constraint);
    record.name = constraint.readName();
    const XMLElement* expression = &constraint;
    ElementSeq bodies = constraint.getContent()->childrenNamed(L"UML:Constraint.body");
    if (bodies.size() == 1 && !bodies.get(0)->getContent()->childElements().isEmpty())
        expression = bodies.get(0)->getContent()->childElements().get(0).get();
    std::optional<_eString> body = expression->propertyText(L"body", L"UML:Expression.body", context);
    if (!body && bodies.size() == 1) body = bodies.get(0)->getContent()->text();
    record.body = body.value_or(_eString());
    record.language = expression->propertyText(L"language", L"UML:Expression.language", context);
    return record;
}

// The text, trimmed, is `word` whatever the case of its letters.
bool isWord(const _eString& text, const wchar_t* word) {
    std::wstring lower = toWString(trimSpaces(text));
    for (wchar_t& c : lower) c = wchar_t(std::towlower(c));
    return lower == word;
}

bool isRealizeWord(const _eString& word) {
    return isWord(word, L"realize") || isWord(word, L"realization") || isWord(word, L"realizes") ||
           isWord(word, L"implements");
}

// The names of the stereotypes of an element: referred to by id (in an attribute or a child), or
// written within it; an id that names nothing is the stereotype's name, as some exporters write.
std::vector<_eString> stereotypeNames(const XMLElement& element, const _eHndl<Context>& context) {
    std::vector<_eString> names;
    for (const _eString& id : referencedIds(element, L"stereotype", L"UML:ModelElement.stereotype", context)) {
        _eFrom<XMLElement> stereotype = context->lookup(id);
        names.push_back(stereotype.isNull() ? id : stereotype->readName().text);
    }
    ElementSeq written = element.getContent()->elementsAtPath({L"UML:ModelElement.stereotype", L"UML:Stereotype"});
    for (int i = 0, n = written.size(); i < n; ++i)
        if (!written.get(i)->hasAttribute(L"xmi.idref")) names.push_back(written.get(i)->readName().text);
    return names;
}

// A class that some exporters write for an enumeration: stereotyped «enumeration», its
// attributes its literals.
bool isEnumerationClass(const XMLElement& element, const _eHndl<Context>& context) {
    if (!textIs(element.getName(), L"UML:Class")) return false;
    std::vector<_eString> names = stereotypeNames(element, context);
    return std::any_of(names.begin(), names.end(), [](const _eString& name) { return isWord(name, L"enumeration"); });
}

// The literals of an enumeration, held by "UML:Enumeration.literal" or standing straight in it.
ElementSeq enumerationLiterals(const XMLElement& enumeration) {
    const XMLcontent& content = *enumeration.getContent();
    return content.elementsAtPath({L"UML:Enumeration.literal", L"UML:EnumerationLiteral"})
        .concat(content.childrenNamed(L"UML:EnumerationLiteral"));
}

// A dependency that says its client realises its supplier: stereotyped «realize» by reference,
// by name or by a stereotype that lists it, or an abstraction without a stereotype.
bool isRealization(const XMLElement& dependency, const Names& realizeExtended, const _eHndl<Context>& context) {
    if (realizeExtended.contains(idOf(dependency))) return true;
    std::vector<_eString> names = stereotypeNames(dependency, context);
    if (names.empty()) return textIs(dependency.getName(), L"UML:Abstraction");
    return std::any_of(names.begin(), names.end(), isRealizeWord);
}

}  // namespace

// What the element says of itself: its tagged value "documentation" (the tag by name or by a tag
// definition, the value by attribute or child), the "comment" attribute some exporters write,
// or older ones "documentation"; comments it refers to and constraints it owns; then what
// the document says of it elsewhere.
NotesRecord XMLElement::notes(const _eHndl<Context>& context) const {
    NotesRecord notes;
    const ModelParts& parts = context->getParts();
    if (parts.documentation) {
        if (std::optional<_eString> text = taggedValue(*this, L"documentation", context))
            ModelAnnotations::addDocumentation(notes, *text);
        for (const wchar_t* attribute : {L"comment", L"documentation"})
            if (hasAttribute(attribute)) ModelAnnotations::addDocumentation(notes, attributeText(attribute, context));
        // The attribute "comment" is a text, not a reference: only the child refers to comments.
        for (const _eString& id : referencedIds(*this, nullptr, L"UML:ModelElement.comment", context)) {
            _eFrom<XMLElement> comment = context->lookup(id);
            if (comment.isNull() || !textIs(comment->getName(), L"UML:Comment")) continue;
            ModelAnnotations::addDocumentation(notes, commentText(*comment, context));
            notes.commentIds.push_back(id);
        }
    }
    if (parts.constraints)
        for (const _eString& id : referencedIds(*this, L"constraint", L"UML:ModelElement.constraint", context)) {
            _eFrom<XMLElement> constraint = context->lookup(id);
            if (!constraint.isNull() && textIs(constraint->getName(), L"UML:Constraint"))
                notes.constraints.push_back(readConstraint(*constraint, context));
        }
    if (context->getAnnotations() != nullptr) context->getAnnotations()->addTo(notes, ownId(), parts, context);
    return notes;
}

bool Xmi1Reader::readsDocument() const { return textIs(root->getName(), L"XMI"); }

NameRecord Xmi1Reader::readName(const XMLElement& element) const { return element.readName(); }

_eString Xmi1Reader::definedKind(const XMLElement& element, bool& descend) const {
    descend = !textIs(element.getName(), L"XMI.extension");
    static const _eString uml = L"UML:";
    if (!element.getName().startsWith(uml) || !element.hasAttribute(L"xmi.id") || element.hasAttribute(L"xmi.idref"))
        return {};
    // What follows "UML:", the string kept for it.
    return XmiNames::local(element.getName());
}

bool Xmi1Reader::isPackage(const XMLElement& element) const {
    return textIs(element.getName(), L"UML:Package") || textIs(element.getName(), L"UML:Subsystem");
}

bool Xmi1Reader::isDeclaredBeyondClasses(const XMLElement& element) const {
    if (!element.hasAttribute(L"xmi.id") || element.hasAttribute(L"xmi.idref")) return false;
    const _eString& tag = element.getName();
    if (parts.interfaces && textIs(tag, L"UML:Interface")) return true;
    if (parts.associationClasses && textIs(tag, L"UML:AssociationClass")) return true;
    return parts.enumerations && textIs(tag, L"UML:Enumeration") && !enumerationLiterals(element).isEmpty();
}

// One walk, outside the tools' records: comments and constraints by the elements they name (or,
// naming none, the element they stand in), realisations of interfaces by their clients, and
// association classes by the classes at their ends.
std::shared_ptr<const ModelAnnotations> Xmi1Reader::annotations(const _eHndl<Context>& context) const {
    std::call_once(annotationsGathered, [&] {
        auto index = std::make_shared<ModelAnnotations>();
        // The ids of the elements entered, as keys: a long one is read where its value holds it.
        std::vector<DictionaryKey> owners{DictionaryKey(_eString())};
        std::vector<const XMLElement*> dependencies;
        Names realizeExtended;
        walkTree(
            *root,
            [&](const XMLElement& element) {
                const _eString& tag = element.getName();
                DictionaryKey ownKey = element.hasAttribute(L"xmi.idref") ? DictionaryKey(_eString()) : elementIdKey(element);
                bool hasId = !ownKey.isEmpty();
                auto targets = [&](const wchar_t* attribute, const wchar_t* holder) {
                    std::vector<DictionaryKey> keys;
                    for (const _eString& named : referencedIds(element, attribute, holder, context))
                        keys.emplace_back(named);
                    if (keys.empty()) keys.push_back(owners.back());
                    return keys;
                };
                if (hasId && parts.documentation && textIs(tag, L"UML:Comment")) {
                    _eString id = ownKey.string();
                    for (const DictionaryKey& target : targets(L"annotatedElement", L"UML:Comment.annotatedElement"))
                        index->addComment(target, id, element, commentText);
                }
                if (hasId && parts.constraints && textIs(tag, L"UML:Constraint"))
                    for (const DictionaryKey& target : targets(L"constrainedElement", L"UML:Constraint.constrainedElement"))
                        index->addConstraint(target, readConstraint(element, context));
                if (hasId && parts.interfaces) {
                    if (textIs(tag, L"UML:Stereotype") && isRealizeWord(element.readName().text))
                        for (const _eString& extended :
                             referencedIds(element, L"extendedElement", L"UML:Stereotype.extendedElement", context))
                            realizeExtended.add(extended);
                    if (textIs(tag, L"UML:Abstraction") || textIs(tag, L"UML:Dependency") || textIs(tag, L"UML:Realization"))
                        dependencies.push_back(&element);
                }
                if (hasId && parts.associationClasses && textIs(tag, L"UML:AssociationClass")) {
                    Names ends = FCAssociationElement::endTypeIds(element, context);
                    for (int i = 0, n = ends.size(); i < n; ++i) index->addAssociationClass(DictionaryKey(ends.at(i)), &element);
                }
                owners.push_back(hasId ? ownKey : owners.back());
                return textIs(tag, L"XMI.extension") ? WalkChildren() : WalkChildren(*element.getContent());
            },
            [&](const XMLElement&) { owners.pop_back(); });
        for (const XMLElement* dependency : dependencies) {
            if (!isRealization(*dependency, realizeExtended, context)) continue;
            for (const _eString& supplierId : referencedIds(*dependency, L"supplier", L"UML:Dependency.supplier", context)) {
                _eFrom<XMLElement> supplier = context->lookup(supplierId);
                if (supplier.isNull() || !textIs(supplier->getName(), L"UML:Interface")) continue;
                for (const _eString& client : referencedIds(*dependency, L"client", L"UML:Dependency.client", context))
                    index->addRealization(DictionaryKey(client), {idOf(*dependency), XMLElement::typeOfTarget(*supplier, context)});
            }
        }
        gathered = index;
    });
    return gathered;
}

// A class, an interface or an association class with its features, the associations that
// involve it, its parents, the interfaces it realises; an enumeration with its literals; each
// with its notes, as far as the parts ask.
ClassRecord Xmi1Reader::readClass(const FoundClass& found, const _eHndl<Context>& context) const {
    const XMLElement& element = *found.element;
    _eHndl<Context> reading = context->reading(forms, parts);
    bool annotated = parts.documentation || parts.constraints || parts.interfaces || parts.associationClasses;
    if (annotated) reading = reading->withAnnotations(annotations(reading));
    ClassRecord record = FCClassElement::readClass(element, reading);
    record.packagePath = found.packagePath;
    const _eString& tag = element.getName();
    if (textIs(tag, L"UML:Interface")) record.kind = ClassKind::interface;
    if (textIs(tag, L"UML:AssociationClass")) record.kind = ClassKind::associationClass;
    if (textIs(tag, L"UML:Enumeration")) {
        record.kind = ClassKind::enumeration;
        ElementSeq literals = enumerationLiterals(element);
        for (int i = 0, n = literals.size(); i < n; ++i)
            record.literals.push_back({idOf(*literals.get(i)), literals.get(i)->readName(), literals.get(i)->notes(reading)});
    }
    if (parts.enumerations && record.literals.empty() && isEnumerationClass(element, reading)) {
        for (const FeatureRecord& feature : record.features)
            if (const auto* attribute = std::get_if<AttributeRecord>(&feature))
                record.literals.push_back({attribute->id, attribute->name, attribute->notes});
        if (!record.literals.empty()) record.kind = ClassKind::enumeration;
    }
    if (!annotated) return record;
    record.notes = element.notes(reading);
    if (!element.hasAttribute(L"xmi.id")) return record;
    if (parts.interfaces) {
        const ModelAnnotations& index = *reading->getAnnotations();
        record.realizations = index.realizationsOf(record.id);
        for (const _eString& id : referencedIds(element, L"realization", L"UML:Class.realization", reading)) {
            _eFrom<XMLElement> target = reading->lookup(id);
            if (!target.isNull() && textIs(target->getName(), L"UML:Interface"))
                record.realizations.push_back({id, XMLElement::typeOfTarget(*target, reading)});
        }
    }
    if (parts.associationClasses)
        for (const XMLElement* association : reading->getAnnotations()->associationClassesAt(record.id))
            if (association != &element) record.associations.push_back(FCAssociationElement::read(*association, reading));
    return record;
}

std::shared_ptr<const ModelReader> Xmi1PathReader::recognise(const XMLElement& root, const ModelSource& source) {
    return std::make_shared<const Xmi1PathReader>(root, formsOf(source.extensions), partsOf(source.extensions));
}

bool Xmi1PathReader::isClass(const XMLElement& element) const {
    return (element.isRecognised() && textIs(element.getName(), L"UML:Class")) || isDeclaredBeyondClasses(element);
}

WalkChildren Xmi1PathReader::descent(const XMLElement& element) const {
    static const _eMap<_eString, Names> steps = [] {
        _eMap<_eString, Names> m;
        m.put(L"XMI", Names(_eString(L"XMI.content")));
        m.put(L"XMI.content", Names(_eString(L"UML:Model")));
        m.put(L"UML:Model", Names(_eString(L"UML:Namespace.ownedElement")));
        m.put(L"UML:Namespace.ownedElement", Names(_eString(L"UML:Class"), _eString(L"UML:Package")));
        m.put(L"UML:Package", Names(_eString(L"UML:Namespace.ownedElement"), _eString(L"UML:Package")));
        return m;
    }();
    static const Names declared(_eString(L"UML:Interface"), _eString(L"UML:AssociationClass"), _eString(L"UML:Enumeration"));
    if (!element.isRecognised()) return {};
    auto [index, end] = steps.lookup(element.getName());
    if (index == end) return {};
    ElementSeq path = element.getContent()->childrenInSet(steps.elements().get(index).second);
    if (!(parts == ModelParts()) && textIs(element.getName(), L"UML:Namespace.ownedElement")) {
        ElementSeq beyond = element.getContent()->childrenInSet(declared);
        for (int i = 0, n = beyond.size(); i < n; ++i)
            if (isDeclaredBeyondClasses(*beyond.get(i))) path.pushBack(beyond.get(i));
    }
    return path;
}

std::shared_ptr<const ModelReader> Xmi1AnywhereReader::recognise(const XMLElement& root,
                                                                 const ModelSource& source) {
    return std::make_shared<const Xmi1AnywhereReader>(root, formsOf(source.extensions), partsOf(source.extensions));
}

bool Xmi1AnywhereReader::isClass(const XMLElement& element) const {
    return (textIs(element.getName(), L"UML:Class") && element.hasAttribute(L"xmi.id") &&
            !element.hasAttribute(L"xmi.idref")) ||
           isDeclaredBeyondClasses(element);
}

WalkChildren Xmi1AnywhereReader::descent(const XMLElement& element) const {
    if (textIs(element.getName(), L"XMI")) return element.getContent()->childrenNamed(L"XMI.content");
    return *element.getContent();
}

TypeRecord FCClassElement::typeRecord(const _eHndl<Context>& context) const {
    return {TypeRecord::classType, readName(), XmiWords::flag(isLeaf(context)), ownId()};
}

// The features of every "UML:Classifier.feature" in turn (in every form, then those straight
// under the class); then the associations and generalizations that name the class's id, in the
// order the dictionary keeps them.
ClassRecord FCClassElement::readClass(const XMLElement& element, const _eHndl<Context>& context) {
    ClassRecord record;
    record.id = idOf(element);
    record.name = element.readName();
    record.isLeaf = XmiWords::flag(element.isLeaf(context));
    record.isAbstract = XmiWords::flag(element.isAbstract(context));
    forEachChild<FCClassifierFeatureElement>(*element.getContent(), L"UML:Classifier.feature",
                                             [&](const FCClassifierFeatureElement& group) {
                                                 readFeatures(*group.getContent(), context, record.features);
                                             });
    if (context->everyForm())
        readFeatures(*element.getContent(), context->reading(MemberForms::everyByName), record.features);
    if (!element.hasAttribute(L"xmi.id")) return record;
    Associations associations = context->getDictionary()->associationsOf(record.id, context);
    for (int i = 0, n = associations.size(); i < n; ++i) record.associations.push_back(associations.at(i)->read(context));
    Generalizations generalizations = context->getDictionary()->generalizationsOf(record.id, context);
    for (int i = 0, n = generalizations.size(); i < n; ++i)
        record.parents.push_back({idOf(*generalizations.at(i)), generalizations.at(i)->readParent(context)});
    return record;
}

void FCClassElement::readFeatures(const XMLcontent& content, const _eHndl<Context>& context,
                                  std::vector<FeatureRecord>& features) {
    forEachChild<FCAttributeElement>(content, L"UML:Attribute", [&](const FCAttributeElement& attribute) {
        features.emplace_back(attribute.read(context));
    });
    forEachChild<FCOperationElement>(content, L"UML:Operation", [&](const FCOperationElement& operation) {
        features.emplace_back(operation.read(context));
    });
}

AttributeRecord FCAttributeElement::read(const _eHndl<Context>& context) const {
    AttributeRecord record;
    record.id = idOf(*this);
    record.name = readName();
    record.visibility = XmiWords::visibility(visibility(context));
    record.changeability = XmiWords::changeability(
        attributeOrSubElement(L"changeability", L"UML:StructuralFeature.changeability", context));
    const XMLElement* expression = nullptr;
    int expressions = getContent()->countAtPath({L"UML:Attribute.initialValue", L"UML:Expression"}, expression);
    if (expressions == 1)
        record.initialValue = expression->propertyText(L"body", L"UML:Expression.body", context);
    else if (expressions == 0)
        record.initialValue = olderInitialValue(*this, context);
    record.type = readType(L"UML:StructuralFeature.type", context);
    record.multiplicity = readMultiplicity(L"UML:StructuralFeature.multiplicity", context);
    record.notes = notes(context);
    return record;
}

OperationRecord FCOperationElement::read(const _eHndl<Context>& context) const {
    OperationRecord record;
    record.id = idOf(*this);
    record.name = readName();
    record.visibility = XmiWords::visibility(visibility(context));
    record.isAbstract = XmiWords::flag(
        flagOrOlder(attributeOrSubElement(L"isAbstract", L"UML:Operation.isAbstract", context), L"abstract", context));
    record.isLeaf = XmiWords::flag(attributeOrSubElement(L"isLeaf", L"UML:Operation.isLeaf", context));
    record.scope = XmiWords::scope(attributeOrSubElement(L"ownerScope", L"UML:Feature.ownerScope", context));
    if (record.scope == Scope::unknown)
        if (std::optional<_eString> older = olderAttribute(L"static", context))
            record.scope = XmiWords::olderFlag(*older) ? Scope::classifier : Scope::instance;
    ElementSeq all = getContent()->elementsAtPath({L"UML:BehavioralFeature.parameter", L"UML:Parameter"});
    if (context->everyForm()) all = all.concat(getContent()->childrenNamed(L"UML:Parameter"));
    for (int i = 0, n = all.size(); i < n; ++i) record.parameters.push_back(readParameter(*all.get(i), context));
    if (std::optional<ParameterRecord> result = olderResult(context, record.parameters))
        record.parameters.push_back(*result);
    record.notes = notes(context);
    return record;
}

// In every form, an operation without a result parameter whose XML attribute "type" gives its
// result: by id, or by name straight under the class; "void" or nothing is no result.
std::optional<ParameterRecord> FCOperationElement::olderResult(const _eHndl<Context>& context,
                                                               const std::vector<ParameterRecord>& parameters) const {
    std::optional<_eString> type = olderAttribute(L"type", context);
    if (!type || type->isEmpty()) return std::nullopt;
    for (const ParameterRecord& each : parameters)
        if (each.direction == Direction::result) return std::nullopt;
    ParameterRecord result;
    result.direction = Direction::result;
    result.type = readType(L"UML:Operation.type", context);
    result.voidResult = !result.type.resolved() || ClassRenderer::readsVoid(result.type);
    return result;
}

// A result is void when its type element says "void" by value or by what it refers to; a
// result typed by an attribute is void unless the id leads to something not called "void".
// A result with no type at all is void; one whose type element leads nowhere is not.
ParameterRecord FCOperationElement::readParameter(const XMLElement& parameter, const _eHndl<Context>& context) {
    ParameterRecord record;
    record.id = idOf(parameter);
    record.name = parameter.readName();
    record.direction = XmiWords::direction(parameter.parameterKind(context));
    record.type = parameter.readType(L"UML:Parameter.type", context);
    if (record.direction != Direction::result) return record;
    const XMLcontent& content = *parameter.getContent();
    auto namedVoid = [&](const _eFrom<XMLElement>& found) {
        return !found.isNull() && ClassRenderer::readsVoid(found->typeRecord(context));
    };
    ElementSeq types = content.childrenNamed(L"UML:Parameter.type");
    if (!types.isEmpty()) {
        record.voidResult = textIs(content.singleChildAttribute(L"UML:Parameter.type", L"xmi.value", context), L"void") ||
                            (types.size() == 1 && namedVoid(context->lookup(types.get(0)->getContent()->referencedId(context))));
    } else if (!parameter.hasAttribute(L"type")) {
        record.voidResult = true;
    } else {
        _eFrom<XMLElement> found = context->lookup(parameter.attributeText(L"type", context));
        record.voidResult = found.isNull() || namedVoid(found);
    }
    return record;
}

// An end names its type by the child "UML:AssociationEnd.type"; in every form also by the child
// "UML:AssociationEnd.participant", or by the XML attribute "type" or "participant".
std::vector<FCAssociationElement::EndReference> FCAssociationElement::ends(const XMLElement& association,
                                                                          const _eHndl<Context>& context) {
    ElementSeq all = association.getContent()->elementsAtPath({L"UML:Association.connection", L"UML:AssociationEnd"});
    std::vector<EndReference> named;
    for (int i = 0, n = all.size(); i < n; ++i) {
        EndReference reference{all.get(i).get(), L"UML:AssociationEnd.type", {}, {}};
        const XMLcontent& content = *reference.end->getContent();
        reference.elements = content.childrenNamed(reference.elementName);
        if (reference.elements.isEmpty() && context->everyForm()) {
            reference.elementName = L"UML:AssociationEnd.participant";
            reference.elements = content.childrenNamed(reference.elementName);
            for (const wchar_t* name : {L"type", L"participant"})
                if (!reference.named()) reference.attributeId = reference.end->olderAttribute(name, context);
        }
        if (reference.named()) named.push_back(reference);
    }
    return named;
}

_eString FCAssociationElement::EndReference::id(const _eHndl<Context>& context) const {
    return attributeId ? *attributeId : elements.get(0)->getContent()->referencedId(context);
}

Names FCAssociationElement::endTypeIds(const XMLElement& association, const _eHndl<Context>& context) {
    Names ids;
    for (const EndReference& reference : ends(association, context)) ids.add(reference.id(context));
    return ids;
}

AssociationRecord FCAssociationElement::read(const XMLElement& association, const _eHndl<Context>& context) {
    AssociationRecord record;
    record.id = idOf(association);
    for (const EndReference& reference : ends(association, context)) {
        const XMLElement& end = *reference.end;
        AssociationEndRecord endRecord;
        endRecord.id = idOf(end);
        endRecord.name = end.readName();
        endRecord.visibility = XmiWords::visibility(end.visibility(context));
        endRecord.isNavigable =
            XmiWords::flag(end.attributeOrSubElement(L"isNavigable", L"UML:AssociationEnd.isNavigable", context));
        endRecord.aggregation =
            XmiWords::aggregation(end.attributeOrSubElement(L"aggregation", L"UML:AssociationEnd.aggregation", context));
        endRecord.typeId = reference.id(context);
        if (reference.attributeId) {
            endRecord.singleType = true;
            endRecord.type = endRecord.roleType = typeOfAttribute(*reference.attributeId, context);
        } else {
            endRecord.singleType = reference.elements.size() == 1;
            endRecord.type = end.readType(reference.elementName, context);
            if (endRecord.singleType) endRecord.roleType = reference.elements.get(0)->referencedType(context);
        }
        endRecord.multiplicity = end.readMultiplicity(L"UML:AssociationEnd.multiplicity", context);
        record.ends.push_back(endRecord);
    }
    return record;
}

const Names& FCGeneralizationElement::childNames() {
    static const Names names(_eString(L"UML:Generalization.child"), _eString(L"UML:Generalization.subtype"));
    return names;
}

const Names& FCGeneralizationElement::parentNames() {
    static const Names names(_eString(L"UML:Generalization.parent"), _eString(L"UML:Generalization.supertype"));
    return names;
}

const Names& FCGeneralizationElement::innerNames() {
    static const Names names(_eString(L"UML:Class"), _eString(L"UML:GeneralizableElement"));
    return names;
}

// In every form the ids may also stand in the XML attributes "child" or "subtype", "parent" or
// "supertype".
_eString FCGeneralizationElement::endId(const Names& elementNames, const wchar_t* attribute, const wchar_t* older,
                                        const _eHndl<Context>& context) const {
    // Where interfaces and association classes are declared, they are ends of generalizations too.
    static const Names declaredNames = [] {
        Names names = innerNames();
        names.add(L"UML:Interface");
        names.add(L"UML:AssociationClass");
        return names;
    }();
    for (const wchar_t* name : {attribute, older})
        if (std::optional<_eString> id = olderAttribute(name, context)) return *id;
    const ModelParts& parts = context->getParts();
    const Names& inner = parts.interfaces || parts.associationClasses ? declaredNames : innerNames();
    return getContent()->grandchildAttributeInSet(elementNames, inner, L"xmi.idref", context);
}

_eString FCGeneralizationElement::childId(const _eHndl<Context>& context) const {
    return endId(childNames(), L"child", L"subtype", context);
}

TypeRecord FCGeneralizationElement::readParent(const _eHndl<Context>& context) const {
    _eFrom<XMLElement> found = context->lookup(endId(parentNames(), L"parent", L"supertype", context));
    return found.isNull() ? TypeRecord::unresolvedReference()
                          : TypeRecord{TypeRecord::named, found->readName(), false, found->ownId()};
}
