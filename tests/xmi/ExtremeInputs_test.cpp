// Inputs far beyond what UML tools write: deep nesting, huge values and names, very many
// attributes and siblings. Each must parse, analyse, generate and be released without a crash,
// with the right results.
#include <gtest/gtest.h>

#include <string>

#include "environment/PlatformText.h"
#include "support/ImportRun.h"
#include "support/ImporterInspector.h"
#include "support/TempDir.h"
#include "xmi/ClassRenderer.h"
#include "xml/XMLDocument.h"

namespace {

constexpr int many = 100000;

std::string model(const std::string& owned) {
    return "<?xml version='1.0'?>\n<XMI xmi.version='1.1'><XMI.content><UML:Model xmi.id='m' name='M'>"
           "<UML:Namespace.ownedElement>\n" +
           owned + "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>\n";
}

std::string repeated(const std::string& text, int times) {
    std::string out;
    out.reserve(text.size() * std::size_t(times));
    for (int i = 0; i < times; ++i) out += text;
    return out;
}

class ExtremeInputs : public testing::Test {
protected:
    // Parses the model; false when the parse failed.
    bool parse(const std::string& text) {
        bool success = false;
        importer.attemptParse(fromPlatformText(dir.write("model.xmi", text)), L"", success);
        return success;
    }
    // Generates every listed class into one file and gives its text.
    std::string generateAll() {
        _eSeq<_eString> names = importer.getClassList();
        Names chosen;
        for (int i = 0; i < names.size(); ++i) chosen.add(names.get(i));
        bool success = false;
        importer.generateSingleFile(fromPlatformText(dir.path() + "/"), L"all", chosen, success);
        EXPECT_TRUE(success);
        return dir.read("all.tv");
    }
    const XMLDocument& document() const { return *XMLImporterInspector::document(importer); }

    TempDir dir;
    _eHndl<Environment> env{new Environment()};
    XMLImporter importer{env.get()};
};

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
}

}  // namespace

TEST_F(ExtremeInputs, DeepNestingOfElementsAndOfPackages) {
    // Elements inside one another, each with an id, under a model with one class.
    ASSERT_TRUE(parse(model("<UML:Class xmi.id='C' name='C'></UML:Class>" + repeated("<a xmi.id='n'>", many) +
                            "<b xmi.id='deepest'/>" + repeated("</a>", many))));
    EXPECT_FALSE(document().getDictionary()->lookup(L"deepest").isNull());
    // Ancestors that repeat one id keep the innermost entry until a merge with a sibling drops it.
    EXPECT_TRUE(document().getDictionary()->lookup(L"n").isNull());
    EXPECT_TRUE(document().getDictionary()->getDuplicateIds().contains(L"n"));
    EXPECT_NE(generateAll().find("class C ^="), std::string::npos);

    // Packages inside one another, the class at the bottom.
    XMLImporter packages(env.get());
    bool success = false;
    std::string text = model(repeated("<UML:Package name='p'><UML:Namespace.ownedElement>", many) +
                             "<UML:Class xmi.id='Deep' name='Deep'></UML:Class>" +
                             repeated("</UML:Namespace.ownedElement></UML:Package>", many));
    packages.attemptParse(fromPlatformText(dir.write("packages.xmi", text)), L"", success);
    ASSERT_TRUE(success);
    ASSERT_EQ(packages.getClassList().size(), 1);
    packages.generateClassFile(fromPlatformText(dir.path() + "/"), L"Deep", success);
    EXPECT_TRUE(success);
    EXPECT_NE(dir.read("Deep.tv").find("class Deep ^="), std::string::npos);

    // The same in a UML 2 model saved as XMI 2.x, the class holding an association's end.
    Extensions xmi2;
    xmi2.xmi2 = true;
    ImportRun uml2("<uml:Model xmi:version='2.1' xmlns:xmi='http://schema.omg.org/spec/XMI/2.1' "
                   "xmlns:uml='http://schema.omg.org/spec/UML/2.1'>" +
                       repeated("<packagedElement xmi:type='uml:Package'>", many) +
                       "<packagedElement xmi:type='uml:Class' xmi:id='Deep' name='Deep'>"
                       "<ownedAttribute xmi:id='e' name='next' type='Deep' association='a'/></packagedElement>"
                       "<packagedElement xmi:type='uml:Association' xmi:id='a' memberEnd='e f'>"
                       "<ownedEnd xmi:id='f' type='Deep'/></packagedElement>" +
                       repeated("</packagedElement>", many) + "</uml:Model>",
                   xmi2);
    EXPECT_EQ(uml2.classes, std::vector<std::wstring>{L"Deep"});
    EXPECT_NE(uml2.single.find("class Deep ^=\nabstract\n\tvar next: ref from Deep;\n"), std::string::npos) << uml2.single;
}

TEST_F(ExtremeInputs, HugeValuesAndNames) {
    std::string value(10 << 20, 'v');
    std::string name(1 << 20, 'N');
    ASSERT_TRUE(parse(model("<UML:Class xmi.id='" + value + "' name='" + name + "' documentation='" + value +
                            "'></UML:Class>")));
    _eFrom<XMLElement> found = document().getDictionary()->lookup(fromPlatformText(value));
    ASSERT_FALSE(found.isNull());
    EXPECT_EQ(ClassRenderer::typeName(found->readName()).size(), 1 << 20);
    ASSERT_EQ(importer.getClassList().size(), 1);
    // A token longer than a line stands on a line of its own.
    EXPECT_NE(generateAll().find("class\n\t\t" + name + "\n\t\t^="), std::string::npos);
}

TEST_F(ExtremeInputs, ManyAttributesAndManySiblings) {
    std::string attributes;
    for (int i = 0; i < many; ++i) attributes += " a" + std::to_string(i) + "='" + std::to_string(i) + "'";
    std::string siblings;
    for (int i = 0; i < many; ++i)
        siblings += "<UML:Class xmi.id='c" + std::to_string(i) + "' name='C" + std::to_string(i) + "'></UML:Class>\n";
    ASSERT_TRUE(parse(model("<UML:Class xmi.id='Wide' name='Wide'" + attributes + "></UML:Class>\n" + siblings)));

    _eFrom<XMLElement> wide = document().getDictionary()->lookup(L"Wide");
    ASSERT_FALSE(wide.isNull());
    EXPECT_EQ(toWString(wide->attributeText(L"a99999", Context::shared())), L"99999");
    EXPECT_EQ(toWString(wide->attributeText(L"a0", Context::shared())), L"0");
    EXPECT_EQ(importer.getClassList().size(), many + 1);
    EXPECT_EQ(count(generateAll(), "\nclass "), std::size_t(many + 1));
}
