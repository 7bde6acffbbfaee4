#include "xmi/Context.h"

#include "xmi/XMLDictionary.h"

Context::Context() : Context(XMLDictionary::empty()) {}

Context::Context(const _eHndl<XMLDictionary>& dictionary, MemberForms forms, ModelParts parts)
    : dictionary(dictionary), forms(forms), parts(parts) {}

Context::Context(const Context& other) = default;

Context::~Context() = default;

const _eHndl<Context>& Context::shared() {
    static const _eHndl<Context> context(new Context());
    return context;
}

bool Context::equalFields(const Context& other) const {
    return dictionary == other.dictionary && forms == other.forms && parts == other.parts;
}

_eHndl<Context> Context::reading(MemberForms other, const ModelParts& otherParts) const {
    if (other == forms && otherParts == parts) return const_cast<Context*>(this);
    _eHndl<Context> made(new Context(dictionary, other, otherParts));
    made->annotations = annotations;
    return made;
}

_eHndl<Context> Context::withAnnotations(std::shared_ptr<const ModelAnnotations> index) const {
    _eHndl<Context> made(new Context(*this));
    made->annotations = std::move(index);
    return made;
}

_eFrom<XMLElement> Context::lookup(const _eString& id) const { return dictionary->lookup(id); }
