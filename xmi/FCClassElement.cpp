// Classes, and the features they group.
#include "xmi/Render.h"
#include "xmi/XMLDictionary.h"

ClassMap FCClassElement::classMap() const {
    ClassMap map;
    map.put(typeName(), const_cast<FCClassElement*>(this));
    return map;
}

_eHndl<TarvaneOutput> FCClassElement::asType(const _eHndl<Context>& context) const {
    if (isLeaf(context)) return tokens({typeName()});
    return tokens({L"from", typeName()});
}

_eHndl<TarvaneSections> FCClassElement::associationSections(const _eHndl<Context>& context) const {
    _eHndl<TarvaneSections> out = TarvaneSections::empty();
    if (!hasAttribute(L"xmi.id")) return out;
    _eString id = attributeText(L"xmi.id", context);
    Associations found = context->getDictionary()->associationsOf(id, context);
    for (int i = 0, n = found.size(); i < n; ++i) out = out->merge(*found.at(i)->sectionsFor(id, context));
    return out;
}

_eHndl<TarvaneOutput> FCClassElement::inheritsClause(const _eHndl<Context>& context) const {
    _eHndl<TarvaneOutput> out = TarvaneOutput::empty();
    if (!hasAttribute(L"xmi.id")) return out;
    Generalizations found = context->getDictionary()->generalizationsOf(attributeText(L"xmi.id", context), context);
    for (int i = 0, n = found.size(); i < n; ++i)
        out = out + tokens({i == 0 ? L"inherits" : L","}) + found.at(i)->parentOutput(context);
    return out;
}

_eHndl<TarvaneOutput> FCClassElement::generateClasses(const Names& classNames, const _eHndl<Context>& context) const {
    _eString name = typeName();
    if (!classNames.contains(name)) return TarvaneOutput::empty();
    _eHndl<TarvaneSections> associationPart = associationSections(context);
    _eHndl<Context> memberContext = context->withClassName(name);
    _eHndl<TarvaneSections> sections =
        getContent()->sectionsNamed(L"UML:Classifier.feature", memberContext)->merge(*associationPart);
    const _eHndl<TarvaneOutput>& abstractPart = sections->getAbstractPart();
    const _eHndl<TarvaneOutput>& confinedPart = sections->getConfinedPart();
    const _eHndl<TarvaneOutput>& interfacePart = sections->getInterfacePart();
    _eHndl<TarvaneOutput> none = TarvaneOutput::empty();
    bool onlyInterface = abstractPart->isEmpty() && confinedPart->isEmpty();
    _eHndl<TarvaneOutput> interfaceOut =
        !interfacePart->isEmpty() || onlyInterface ? tokens({L"interface"}) + interfacePart : none;
    _eHndl<TarvaneOutput> confinedOut = confinedPart->isEmpty() ? none : tokens({L"confined"}) + confinedPart;
    _eHndl<TarvaneOutput> abstractOut = abstractPart->isEmpty() ? none : tokens({L"abstract"}) + abstractPart;
    _eHndl<TarvaneOutput> prefix = isLeaf(context) ? tokens({L"final"}) : isAbstract(context) ? tokens({L"deferred"}) : none;
    _eHndl<TarvaneOutput> body = abstractOut + confinedOut + interfaceOut + tokens({L"end", L";"});
    return prefix + tokens({L"class", name, L"^="}) + inheritsClause(context) + body;
}

_eHndl<TarvaneSections> FCClassifierFeatureElement::generateSections(const _eHndl<Context>& context) const {
    return getContent()->sectionsNamed(L"UML:Attribute", context)->merge(*getContent()->sectionsNamed(L"UML:Operation", context));
}
