#include "xmi/Context.h"

#include "xmi/XMLDictionary.h"

Context::Context() : Context(XMLDictionary::empty()) {}

Context::Context(const _eHndl<XMLDictionary>& dictionary) : dictionary(dictionary) {}

Context::Context(const Context& other) = default;

Context::~Context() = default;

const _eHndl<Context>& Context::shared() {
    static const _eHndl<Context> context(new Context());
    return context;
}

bool Context::equalFields(const Context& other) const { return dictionary == other.dictionary; }

_eFrom<XMLElement> Context::lookup(const _eString& id) const { return dictionary->lookup(id); }
