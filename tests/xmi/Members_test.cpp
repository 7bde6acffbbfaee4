// Members of classes: attributes, multiplicities, literals and operations.
#include <gtest/gtest.h>

#include <tuple>

#include "support/ParseRun.h"
#include "xmi/ClassRenderer.h"
#include "xml/XMLDocument.h"

namespace {

std::wstring joined(const _eHndl<TarvaneOutput>& out) {
    std::wstring text;
    for (int i = 0; i < out->tokens().size(); ++i) text += (i ? L" " : L"") + toWString(out->tokens().at(i));
    return text;
}

// The root's first child element of that tag, with a context on the whole fragment.
struct Fragment {
    explicit Fragment(const std::string& inner) {
        ParseOutcome o = parseText("<r>" + inner + "<UML:DataType xmi.id='int' name='int'/><UML:DataType xmi.id='v' name='void'/>"
                                   "<UML:Class xmi.id='T' name='T' isLeaf='true'></UML:Class></r>");
        EXPECT_TRUE(o.accepted) << inner;
        root = static_cast<XMLDocument*>(o.result.get())->getRoot();
        context = new Context(root->dictionary());
    }
    _eFrom<XMLElement> first(const wchar_t* tag) const { return root->getContent()->childrenNamed(tag).get(0); }
    // "abstract | confined | interface"
    std::wstring sections(const wchar_t* tag) const {
        _eFrom<XMLElement> element = first(tag);
        _eHndl<TarvaneSections> s = TarvaneSections::empty();
        if (auto* attribute = dynamic_cast<const FCAttributeElement*>(element.get()))
            s = ClassRenderer::attributeSections(attribute->read(context));
        if (auto* operation = dynamic_cast<const FCOperationElement*>(element.get()))
            s = ClassRenderer::operationSections(operation->read(context), L"K");
        return joined(s->getAbstractPart()) + L" | " + joined(s->getConfinedPart()) + L" | " + joined(s->getInterfacePart());
    }
    _eFrom<XMLElement> root;
    _eHndl<Context> context;
};

std::string attribute(const std::string& extra, const std::string& range) {
    std::string multiplicity =
        range.empty() ? "" : "<UML:StructuralFeature.multiplicity><UML:Multiplicity><UML:Multiplicity.range>" + range +
                                 "</UML:Multiplicity.range></UML:Multiplicity></UML:StructuralFeature.multiplicity>";
    return "<UML:Attribute name='x' visibility='public' " + extra + "><UML:StructuralFeature.type>"
           "<UML:Class xmi.idref='T'/></UML:StructuralFeature.type>" + multiplicity + "</UML:Attribute>";
}

std::string range(const std::string& lower, const std::string& upper) {
    return "<UML:MultiplicityRange lower='" + lower + "' upper='" + upper + "'/>";
}

std::string operation(const std::string& attributes, const std::string& parameters) {
    return "<UML:Operation " + attributes + "><UML:BehavioralFeature.parameter>" + parameters +
           "</UML:BehavioralFeature.parameter></UML:Operation>";
}

std::string parameter(const std::string& name, const std::string& kind, const std::string& type) {
    return "<UML:Parameter name='" + name + "'" + (kind.empty() ? "" : " kind='" + kind + "'") +
           "><UML:Parameter.type><UML:DataType xmi.idref='" + type + "'/></UML:Parameter.type></UML:Parameter>";
}

}  // namespace

TEST(Members, AttributesAndTheirMultiplicities) {
    // The type that each multiplicity gives the attribute.
    const std::pair<std::string, const wchar_t*> multiplicities[] = {
        {"", L"T"},
        {range("0", "1"), L"T || void"},
        {range("1", "*"), L"those x : set of T :- # x >= 1"},
        {range("0", "*"), L"set of T"},
        {range("2", "1"), L"T"},
        {range(" 2 ", "5"), L"those x : set of T :- # x >= 2"},
        {range("\t2", "5"), L"set of T"},
        {range("0", "1") + range("0", "1"), L"T"},
    };
    for (const auto& [ranges, type] : multiplicities) {
        EXPECT_EQ(Fragment(attribute("", ranges)).sections(L"UML:Attribute"),
                  L"var x : " + std::wstring(type) + L" ; |  | selector x ;")
            << ranges;
    }
    EXPECT_EQ(Fragment("<UML:Attribute name='value' visibility='protected' changeability='frozen'><UML:Attribute.initialValue>"
                       "<UML:Expression body='100L'/></UML:Attribute.initialValue></UML:Attribute>")
                  .sections(L"UML:Attribute"),
              L"const value_ ^= 100 ; | function value_ ; | ");
    EXPECT_EQ(Fragment("<UML:Attribute name='y' visibility='private'></UML:Attribute>").sections(L"UML:Attribute"),
              L"var y : ? ; |  | ");
    EXPECT_EQ(toWString(ClassRenderer::literalText(L"'a'")), L"`a`");
    EXPECT_EQ(toWString(ClassRenderer::literalText(L"''")), L"''");
    EXPECT_EQ(toWString(ClassRenderer::literalText(L"1.5f")), L"1.5f");
    EXPECT_EQ(toWString(ClassRenderer::literalText(L"-7l")), L"-7");
    EXPECT_EQ(toWString(ClassRenderer::literalText(L"L")), L"L");
}

TEST(Members, OperationsInEveryForm) {
    const std::string area = parameter("r", "return", "int"), a = parameter("a", "in", "int"),
                      b = parameter("b", "in", "int");
    const std::tuple<const char*, std::string, const wchar_t*> rows[] = {
        {"name='area' visibility='public'", area, L" |  | function area : int ^= ? ;"},
        {"name='area' visibility='public' isAbstract='true'", area, L" |  | deferred function area : int ;"},
        {"name='_area' visibility='public'", area, L" |  | function _area : int ^= ? ;"},
        {"name='setX' visibility='public'", parameter("v", "in", "int"), L" |  | schema ! setX ( v : int ) post ? ;"},
        {"name='get' visibility='protected'", parameter("r", "out", "int"), L" | schema get ( r ! : out int ) post ? ; | "},
        {"name='f' visibility='public'", parameter("r", "return", "v"), L" |  | schema ! f post ? ;"},
        {"name='K'", a + parameter("b", "out", "int"), L"build { a : int , b : int } post ? ; |  | "},
        {"name='build' visibility='public'", "", L" |  | build { } post ? ;"},
        {"name='s' visibility='public' ownerScope='classifier' isAbstract='true'", area,
         L" |  | nonmember function s : int ;"},
        {"name='+' visibility='public'", a + b + area, L" |  | operator ( a : int ) + ( b : int ) : int ^= ? ;"},
        {"name='+' visibility='public'", a + b + parameter("c", "inout", "int") + area,
         L" |  | operator ( a : int ) + ( b : int , c ! : int ) : int ^= ? ;"},
        {"name='-' visibility='public'", a + area, L" |  | operator - ( a : int ) : int ^= ? ;"},
        {"name='*' visibility='public'", area, L" |  | operator * : int ^= ? ;"},
        {"name='two' visibility='public'", area + parameter("s", "return", "int"),
         L" |  | function two : [[Duplicate return declaration]] ^= ? ;"},
    };
    for (const auto& [attributes, parameters, expected] : rows)
        EXPECT_EQ(Fragment(operation(attributes, parameters)).sections(L"UML:Operation"), expected) << attributes;
}
