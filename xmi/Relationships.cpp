// Associations and generalizations: members for the navigable far ends, and entries of the
// "inherits" list.
#include "xmi/Render.h"
#include "xmi/XMLDictionary.h"

namespace {

const _eString yes = L"true";

}  // namespace

ElementSeq FCAssociationElement::ends() const {
    ElementSeq all = getContent()->elementsAtPath({L"UML:Association.connection", L"UML:AssociationEnd"});
    ElementSeq out;
    for (int i = 0, n = all.size(); i < n; ++i)
        if (all.get(i)->getContent()->hasChild(L"UML:AssociationEnd.type")) out.pushBack(all.get(i));
    return out;
}

bool FCAssociationElement::involves(const _eString& classId, const _eHndl<Context>& context) const {
    return endTypeIds(context).contains(classId);
}

Names FCAssociationElement::endTypeIds(const _eHndl<Context>& context) const {
    ElementSeq all = ends();
    Names ids;
    for (int i = 0, n = all.size(); i < n; ++i) {
        ElementSeq types = all.get(i)->getContent()->childrenNamed(L"UML:AssociationEnd.type");
        ids.add(types.get(0)->getContent()->referencedId(context));
    }
    return ids;
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

bool FCGeneralizationElement::isChild(const _eString& classId, const _eHndl<Context>& context) const {
    return childId(context) == classId;
}

_eString FCGeneralizationElement::childId(const _eHndl<Context>& context) const {
    return getContent()->grandchildAttributeInSet(childNames(), innerNames(), L"xmi.idref", context);
}

_eHndl<TarvaneSections> FCAssociationElement::sectionsFor(const _eString& classId, const _eHndl<Context>& context) const {
    ElementSeq all = ends();
    if (all.size() != 2) return TarvaneSections::empty();
    const XMLElement& first = *all.get(0);
    const XMLElement& second = *all.get(1);
    return endSections(first, second, classId, context)->merge(*endSections(second, first, classId, context));
}

_eHndl<TarvaneSections> FCAssociationElement::endSections(const XMLElement& ownEnd, const XMLElement& farEnd,
                                                          const _eString& classId,
                                                          const _eHndl<Context>& context) const {
    ElementSeq types = ownEnd.getContent()->childrenNamed(L"UML:AssociationEnd.type");
    if (types.size() != 1 || !(types.get(0)->getContent()->referencedId(context) == classId) ||
        !(farEnd.attributeOrSubElement(L"isNavigable", L"UML:AssociationEnd.isNavigable", context) == yes))
        return TarvaneSections::empty();
    bool isRef = true;
    if (!(ownEnd.attributeOrSubElement(L"isNavigable", L"UML:AssociationEnd.isNavigable", context) == yes)) {
        _eString aggregation = ownEnd.attributeOrSubElement(L"aggregation", L"UML:AssociationEnd.aggregation", context);
        isRef = !(aggregation == _eString(L"aggregate") || aggregation == _eString(L"composite"));
    }
    return farEndMember(farEnd, isRef, context);
}

_eHndl<TarvaneSections> FCAssociationElement::farEndMember(const XMLElement& end, bool isRef,
                                                           const _eHndl<Context>& context) const {
    _eString name = end.hasName() ? end.nameOrUnknown(true)
                                  : context->getRolePrefix() + end.getContent()->childReferencedTypeName(
                                                                   L"UML:AssociationEnd.type", context);
    _eHndl<TarvaneOutput> declaration =
        tokens({L"var", name, L":"}) +
        end.multiplicityType(L"UML:AssociationEnd.multiplicity", L"UML:AssociationEnd.type", isRef, context) +
        tokens({L";"});
    return byVisibility(end.visibility(context), declaration, tokens({L"selector", name, L";"}));
}

_eHndl<TarvaneOutput> FCGeneralizationElement::parentOutput(const _eHndl<Context>& context) const {
    _eString id = getContent()->grandchildAttributeInSet(parentNames(), innerNames(), L"xmi.idref", context);
    _eFrom<XMLElement> found = context->lookup(id);
    return tokens({found.isNull() ? _eString(L"?") : found->typeName()});
}
