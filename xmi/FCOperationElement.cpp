// Operations: the choice between constructor, schema, function and operator, and the
// rendering of parameters, modifiers and the skeleton body.
#include "xmi/Render.h"
#include "xmi/XMLDictionary.h"

namespace {

bool startsLikeAName(const _eString& name) {
    if (name.isEmpty()) return false;
    wchar_t c = name.get(0);
    return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || c == L'_';
}

}  // namespace

bool FCOperationElement::returnsSomething(const XMLElement& parameter, const _eHndl<Context>& context) {
    const XMLcontent& content = *parameter.getContent();
    if (content.hasChild(L"UML:Parameter.type"))
        return !(content.singleChildAttribute(L"UML:Parameter.type", L"xmi.value", context) == _eString(L"void")) &&
               !(content.childReferencedTypeName(L"UML:Parameter.type", context) == _eString(L"void"));
    if (!parameter.hasAttribute(L"type")) return false;
    _eFrom<XMLElement> found = context->lookup(parameter.attributeText(L"type", context));
    return !found.isNull() && !(found->typeName() == _eString(L"void"));
}

_eHndl<TarvaneOutput> FCOperationElement::parameterList(const ElementSeq& list, bool isConstructor,
                                                        const _eHndl<Context>& context) {
    if (list.isEmpty()) return isConstructor ? tokens({L"{", L"}"}) : TarvaneOutput::empty();
    _eHndl<TarvaneOutput> out = TarvaneOutput::empty();
    for (int i = 0, n = list.size(); i < n; ++i) {
        const XMLElement& p = *list.get(i);
        _eString separator = i != 0 ? L"," : isConstructor ? L"{" : L"(";
        _eString kind = p.parameterKind(context);
        _eHndl<TarvaneOutput> mode = tokens({L":"});
        if (!isConstructor && kind == _eString(L"inout")) mode = tokens({L"!", L":"});
        if (!isConstructor && kind == _eString(L"out")) mode = tokens({L"!", L":", L"out"});
        out = out + tokens({separator, p.nameOrUnknown(true)}) + mode + p.typeOf(L"UML:Parameter.type", context);
    }
    return out + tokens({isConstructor ? L"}" : L")"});
}

_eHndl<TarvaneSections> FCOperationElement::generateSections(const _eHndl<Context>& context) const {
    bool abstract = attributeOrSubElement(L"isAbstract", L"UML:Operation.isAbstract", context) == _eString(L"true");
    _eString name = nameOrUnknown(true);
    bool isConstructor = nameOrUnknown(false) == _eString(L"build") || name == context->getClassName();
    ElementSeq all = getContent()->elementsAtPath({L"UML:BehavioralFeature.parameter", L"UML:Parameter"});
    ElementSeq parameters;
    ElementSeq returns;
    for (int i = 0, n = all.size(); i < n; ++i) {
        const _eFrom<XMLElement>& p = all.get(i);
        if (!(p->parameterKind(context) == _eString(L"return")))
            parameters.pushBack(p);
        else if (returnsSomething(*p, context))
            returns.pushBack(p);
    }
    _eHndl<TarvaneOutput> none = TarvaneOutput::empty();
    _eHndl<TarvaneOutput> body;
    _eHndl<TarvaneOutput> prefix = none;
    if (isConstructor) {
        body = tokens({L"build"}) + parameterList(parameters, true, context) + tokens({L"post", L"?"});
    } else {
        if (attributeOrSubElement(L"ownerScope", L"UML:Feature.ownerScope", context) == _eString(L"classifier"))
            prefix = tokens({L"nonmember"});
        else if (abstract)
            prefix = tokens({L"deferred"});
        else if (attributeOrSubElement(L"isLeaf", L"UML:Operation.isLeaf", context) == _eString(L"true"))
            prefix = tokens({L"final"});
        if (returns.isEmpty()) {
            bool allIn = true;
            for (int i = 0, n = parameters.size(); i < n; ++i)
                if (!(parameters.get(i)->parameterKind(context) == _eString(L"in"))) allIn = false;
            _eHndl<TarvaneOutput> marker = allIn ? tokens({L"!"}) : none;
            body = tokens({L"schema"}) + marker + tokens({name}) + parameterList(parameters, false, context) +
                   (abstract ? none : tokens({L"post", L"?"}));
        } else {
            _eHndl<TarvaneOutput> head;
            if (startsLikeAName(name)) {
                head = tokens({L"function", name}) + parameterList(parameters, false, context);
            } else if (parameters.size() == 1) {
                head = tokens({L"operator", name}) + parameterList(parameters, false, context);
            } else if (parameters.isEmpty()) {
                // An operator symbol without parameters has no operand to stand between: it is
                // written as a prefix operator without parentheses.
                head = tokens({L"operator", name});
            } else {
                head = tokens({L"operator"}) + parameterList(parameters.take(1), false, context) + tokens({name}) +
                       parameterList(parameters.drop(1), false, context);
            }
            _eHndl<TarvaneOutput> returnType = returns.size() > 1
                                                   ? tokens({L":", L"[[Duplicate return declaration]]"})
                                                   : tokens({L":"}) + returns.get(0)->typeOf(L"UML:Parameter.type", context);
            body = head + returnType + (abstract ? none : tokens({L"^=", L"?"}));
        }
    }
    _eHndl<TarvaneOutput> declaration = prefix + body + tokens({L";"});
    _eString visibility = this->visibility(context);
    if (visibility == _eString(L"public")) return _eHndl<TarvaneSections>(new TarvaneSections(none, none, declaration));
    if (visibility == _eString(L"protected")) return _eHndl<TarvaneSections>(new TarvaneSections(none, declaration, none));
    return _eHndl<TarvaneSections>(new TarvaneSections(declaration, none, none));
}
