// XMI text parsed into a tree, and the queries that elements ask of their content.
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "support/CorpusScan.h"
#include "support/ParseRun.h"
#include "xmi/ClassRenderer.h"
#include "xml/XMLCharData.h"
#include "xml/XMLDocument.h"

namespace {

_eHndl<XMLDocument> parsed(const std::string& text) {
    ParseOutcome o = parseText(text);
    EXPECT_TRUE(o.accepted) << text;
    return _eHndl<XMLDocument>(dynamic_cast<XMLDocument*>(o.result.get()));
}

_eFrom<XMLElement> rootOf(const std::string& text) { return parsed(text)->getRoot(); }

std::wstring w(const _eString& s) { return toWString(s); }

const _eHndl<Context>& ctx() { return Context::shared(); }

// The name of an element as the renderer reads what the element gives.
std::wstring nameOf(const XMLElement& e, bool escape) { return toWString(ClassRenderer::nameText(e.readName(), escape)); }
bool hasName(const XMLElement& e) { return ClassRenderer::hasName(e.readName()); }
std::wstring typeNameOf(const XMLElement& e) { return toWString(ClassRenderer::typeName(e.readName())); }

// A model in UML 1.x's long or short tags (two files under tests/data/tags).
std::string model(bool longTags) {
    return readFile(std::string(MODELBRIDGE_TEST_DATA_DIR) + "/tags/" + (longTags ? "long" : "short") + ".xmi");
}

}  // namespace

TEST(XMLTree, BothTagFormsGiveTheSameClasses) {
    for (bool longTags : {false, true}) {
        SCOPED_TRACE(longTags ? "long tags" : "short tags");
        _eHndl<XMLDocument> doc = parsed(model(longTags));
        ASSERT_FALSE(doc.isNull());
        _eFrom<XMLElement> root = doc->getRoot();
        EXPECT_NE(dynamic_cast<const XMIRootElement*>(root.get()), nullptr);
        ElementSeq classes = root->getContent()->elementsAtPath(
            {L"XMI.content", L"UML:Model", L"UML:Namespace.ownedElement", L"UML:Class"});
        ASSERT_GE(classes.size(), 1);
        const XMLElement& c = *classes.get(0);
        EXPECT_NE(dynamic_cast<const FCClassElement*>(&c), nullptr);
        EXPECT_EQ(w(c.getName()), L"UML:Class");
        EXPECT_EQ(w(c.visibility(ctx())), L"public");
        // The attribute keeps its inner blank and its comma; the child element does not.
        EXPECT_EQ(nameOf(c, false), longTags ? L"first_name, second" : L"first name, second");
        EXPECT_TRUE(hasName(c));
        _eHndl<XMLDictionary> dictionary = root->dictionary();
        EXPECT_FALSE(dictionary->lookup(L"c1").isNull());
        EXPECT_TRUE(dictionary->lookup(L"nope").isNull());
        EXPECT_EQ(typeNameOf(*dictionary->lookup(L"d1")), L"bool");
        EXPECT_EQ(nameOf(*dictionary->lookup(L"m"), false), L"Bank");
    }
    // The reference and the empty-element tag are unrecognised elements.
    _eFrom<XMLElement> root = rootOf(model(false));
    ElementSeq all = root->getContent()->elementsAtPath(
        {L"XMI.content", L"UML:Model", L"UML:Namespace.ownedElement", L"UML:Class"});
    ASSERT_EQ(all.size(), 2);
    EXPECT_NE(dynamic_cast<const UnrecognisedElement*>(all.get(1).get()), nullptr);
    EXPECT_EQ(w(all.get(0)->isAbstract(ctx())), L"true");
    EXPECT_EQ(w(all.get(0)->isLeaf(ctx())), L"?");
    ElementSeq types = root->getContent()->elementsAtPath(
        {L"XMI.content", L"UML:Model", L"UML:Namespace.ownedElement", L"UML:DataType"});
    EXPECT_NE(dynamic_cast<const UnrecognisedElement*>(types.get(0).get()), nullptr);
}

TEST(XMLTree, ContentQueriesAndTheirMessages) {
    _eFrom<XMLElement> e = rootOf(
        "<e><UML:ModelElement.name>class</UML:ModelElement.name>"
        "<UML:Multiplicity><UML:Multiplicity.range><UML:MultiplicityRange lower='0'/><UML:MultiplicityRange lower='1'/>"
        "</UML:Multiplicity.range></UML:Multiplicity>"
        "<t> a b </t><t2>x\n</t2><d/><d/>"
        "<UML:StructuralFeature.type><UML:Class xmi.idref='c9'/></UML:StructuralFeature.type></e>");
    const XMLcontent& c = *e->getContent();
    EXPECT_EQ(c.elementsAtPath({L"UML:Multiplicity", L"UML:Multiplicity.range", L"UML:MultiplicityRange"}).size(), 2);
    EXPECT_EQ(w(c.textAtPath({L"t"})), L"a b");
    EXPECT_EQ(w(c.textAtPath({L"t2"})), L"x\n");
    EXPECT_EQ(w(c.textAtPath({L"none"})), L"?[[Missing Element 'none']]");
    EXPECT_EQ(w(c.textAtPath({L"d"})), L"?[[Duplicate Element 'd']]");
    EXPECT_EQ(w(c.singleChildAttribute(L"d", L"x", ctx())), L"?[[Duplicate Element 'd']]");
    EXPECT_EQ(w(c.singleChildAttribute(L"t", L"x", ctx())), L"?[[Missing Attribute 'x']]");
    EXPECT_EQ(nameOf(*e, true), L"class_");
    EXPECT_EQ(nameOf(*e, false), L"class");
    EXPECT_EQ(w(e->getContent()->childrenNamed(L"UML:StructuralFeature.type").get(0)->getContent()->referencedId(ctx())),
              L"c9");
    EXPECT_EQ(e->getContent()->childrenNamed(L"UML:StructuralFeature.type").get(0)->referencedType(ctx()).kind,
              TypeRecord::unresolved);
    EXPECT_EQ(w(e->getContent()->childrenNamed(L"t").get(0)->getContent()->referencedId(ctx())),
              L"?[[Missing Element 'UML:AssociationClass' or 'UML:Class' or 'UML:Classifier' or 'UML:DataType' or "
              L"'UML:Data_Types.Enumeration' or 'UML:Data_Types.Primitive' or 'UML:Data_Types.Structure' or "
              L"'UML:Interface']]");
    EXPECT_EQ(w(ClassRenderer::typeTokens(e->readType(L"UML:StructuralFeature.type", ctx()))->tokens().get(0)), L"?");

    _eFrom<XMLElement> unnamed = rootOf("<a/>");
    EXPECT_EQ(nameOf(*unnamed, false), L"?[[Missing_Element_'UML:ModelElement.name']]");
    EXPECT_FALSE(hasName(*unnamed));
    EXPECT_TRUE(unnamed->getContent()->childrenNamed(L"x").isEmpty());
    EXPECT_TRUE(*unnamed->dictionary() == XMLDictionary());
    EXPECT_EQ(nameOf(*rootOf("<a><UML:ModelElement.name>a,,b</UML:ModelElement.name></a>"), false), L"a, , b");
    EXPECT_EQ(w(ClassRenderer::nameOrUnknown(rootOf("<a name='   '/>")->readName(), false)), L"?");
    EXPECT_EQ(typeNameOf(*rootOf("<a name='Boolean'/>")), L"Boolean");
    EXPECT_EQ(typeNameOf(*rootOf("<a name='double'/>")), L"real");
    _eFrom<XMLElement> twice = rootOf("<a><UML:ModelElement.visibility>public</UML:ModelElement.visibility>"
                                      "<UML:ModelElement.visibility>public</UML:ModelElement.visibility></a>");
    EXPECT_EQ(w(twice->visibility(ctx())), L"?");
    // Two type elements name no type, even when both lead somewhere.
    const std::string type = "<UML:StructuralFeature.type><UML:DataType xmi.idref='i'/></UML:StructuralFeature.type>";
    _eFrom<XMLElement> typed = rootOf("<a>" + type + type + "<UML:DataType xmi.id='i' name='int'/></a>");
    _eHndl<Context> known(new Context(typed->dictionary()));
    EXPECT_EQ(typed->readType(L"UML:StructuralFeature.type", known).kind, TypeRecord::unresolved);
}

TEST(XMLTree, ValuesReferencesAndErrorsOfElements) {
    _eFrom<XMLElement> e = rootOf("<a x='1' x='2' x='3' v='a&b;c&#65;'>t&amp;<![CDATA[a]]b]]></b>");
    EXPECT_EQ(w(e->attributeText(L"x", ctx())), L"1");
    EXPECT_EQ(w(e->attributeText(L"v", ctx())), L"a[[EntityRef'b']]cA");
    XMLErrors errors = e->getErrors();
    // The two repetitions of x make equal records, which collapse.
    ASSERT_EQ(errors.size(), 2);
    EXPECT_EQ(w(errors.at(0)->text(true)), L"in.xml (1,1): Warning! Element has multiple definitions of attribute 'x'.");
    EXPECT_EQ(w(errors.at(1)->text(true)),
              L"in.xml (1,59): Warning! End tag name 'b' does not match start tag name 'a' at (1,1).");
    const auto& items = e->getContent()->getItems();
    ASSERT_EQ(items.size(), 3);
    EXPECT_EQ(w(dynamic_cast<const XMLCharData*>(items.get(0).get())->getText()), L"t");
    EXPECT_NE(dynamic_cast<const XMLEntityReference*>(items.get(1).get()), nullptr);
    EXPECT_EQ(w(dynamic_cast<const XMLCDSect*>(items.get(2).get())->getText()), L"a]]b");
    EXPECT_EQ(w(e->getContent()->text()), L"t");
}

// Counting the elements at a path agrees with gathering them: none, one (and which), or more,
// whichever levels the matches spread over and whatever other elements and text lie between.
TEST(XMLTree, CountingAtAPathAgreesWithGathering) {
    std::mt19937 random(20261126);
    std::function<void(int, std::string&)> element = [&](int depth, std::string& out) {
        const char* name = random() % 2 == 0 ? "a" : "b";
        out += std::string("<") + name + " n='" + std::to_string(out.size()) + "'>";
        int children = depth >= 4 ? 0 : int(random() % 4);
        for (int i = 0; i < children; ++i) {
            if (random() % 3 == 0) out += " text ";
            element(depth + 1, out);
        }
        out += std::string("</") + name + ">";
    };
    for (int round = 0; round < 200; ++round) {
        std::string text = "<root>";
        for (int i = 0, n = int(random() % 4); i < n; ++i) element(1, text);
        text += "</root>";
        _eFrom<XMLElement> root = rootOf(text);
        const XMLcontent& content = *root->getContent();
        auto check = [&](std::initializer_list<std::wstring_view> path) {
            ElementSeq gathered = content.elementsAtPath(path);
            const XMLElement* first = nullptr;
            int counted = content.countAtPath(path, first);
            ASSERT_EQ(counted, std::min(gathered.size(), 2)) << text;
            EXPECT_EQ(first, gathered.isEmpty() ? nullptr : gathered.get(0).get()) << text;
        };
        check({L"a"});
        check({L"b"});
        check({L"a", L"a"});
        check({L"a", L"b"});
        check({L"b", L"a", L"b"});
        check({L"a", L"a", L"a"});
        check({L"a", L"b", L"a", L"b"});
    }
}
