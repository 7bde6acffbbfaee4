#include "xmi/Context.h"

#include "xmi/XMLDictionary.h"

Context::Context() : Context(XMLDictionary::empty()) {}

Context::Context(const _eHndl<XMLDictionary>& dictionary, MemberForms forms) : dictionary(dictionary), forms(forms) {}

Context::Context(const Context& other) = default;

Context::~Context() = default;

const _eHndl<Context>& Context::shared() {
    static const _eHndl<Context> context(new Context());
    return context;
}

bool Context::equalFields(const Context& other) const {
    return dictionary == other.dictionary && forms == other.forms;
}

_eHndl<Context> Context::reading(MemberForms other) const {
    if (other == forms) return const_cast<Context*>(this);
    return _eHndl<Context>(new Context(dictionary, other));
}

_eFrom<XMLElement> Context::lookup(const _eString& id) const { return dictionary->lookup(id); }
