// Synthetic XMI models of a second shape, for what the first leaves out: packages nested 48
// deep and indented two blanks a level, long names, long attribute values with references in
// them, much character data (documentation bodies over several lines) and comments. Each
// level of a chain holds a comment, one class with two attributes and an operation, the
// class's documentation as a tagged value and as a comment body, and the next level's package.
#pragma once

#include <cstddef>
#include <string>

class XmiProseGenerator {
public:
    // A model of at least `bytes` bytes.
    static std::string model(std::size_t bytes) {
        XmiProseGenerator generator;
        return generator.build(bytes);
    }

private:
    static constexpr int depth = 48;

    std::string out;
    int level = 0;

    void indent() { out.append(std::size_t(2 * level), ' '); }
    void line(const std::string& text) {
        indent();
        out.append(text).append("\n");
    }
    void open(const std::string& tag, const std::string& attributes = "") {
        line("<" + tag + attributes + ">");
        ++level;
    }
    void close(const std::string& tag) {
        --level;
        line("</" + tag + ">");
    }

    // A sentence that changes with `seed`, with the references an exporter writes.
    static std::string prose(int seed) {
        static const char* words[] = {"the", "account", "holds", "a", "balance", "that", "changes", "when",
                                      "money", "moves", "between", "customers", "and", "their", "banks"};
        std::string text;
        for (int k = 0; k < 24; ++k) {
            text.append(words[(seed * 7 + k * 3) % 15]);
            text.append(k % 8 == 7 ? " &amp; " : " ");
        }
        return text + "&lt;" + std::to_string(seed) + "&gt; &#233;t&#xE9;.";
    }

    std::string className(int chain, int at) const {
        return "CustomerAccountRegistrationServiceChain" + std::to_string(chain) + "Level" + std::to_string(at);
    }

    void comment(int seed) {
        line("<!-- " + std::string(60, '=') + "\n" + std::string(std::size_t(2 * level), ' ') + "  generated section " +
             std::to_string(seed) + ": " + std::string(120, '~') + " -->");
    }

    void documentation(int seed) {
        open("UML:ModelElement.taggedValue");
        line("<UML:TaggedValue xmi.id=\"tv" + std::to_string(seed) + "\" tag=\"documentation\" value=\"" + prose(seed) +
             " " + prose(seed + 1) + "\"/>");
        close("UML:ModelElement.taggedValue");
        open("UML:ModelElement.comment");
        open("UML:Comment", " xmi.id=\"cm" + std::to_string(seed) + "\" name=\"note\"");
        open("UML:Comment.body");
        for (int k = 0; k < 4; ++k) line(prose(seed + k));
        close("UML:Comment.body");
        close("UML:Comment");
        close("UML:ModelElement.comment");
    }

    void attribute(const std::string& owner, int k, const std::string& type) {
        std::string id = owner + "_attribute" + std::to_string(k);
        open("UML:Attribute", " xmi.id=\"" + id + "\" name=\"registeredCustomerAccountBalanceInEuroCents" +
                                  std::to_string(k) + "\" visibility=\"private\"");
        open("UML:StructuralFeature.type");
        line("<UML:DataType xmi.idref=\"" + type + "\"/>");
        close("UML:StructuralFeature.type");
        open("UML:Attribute.initialValue");
        line("<UML:Expression body=\"" + std::to_string(k * 1000) + "\"/>");
        close("UML:Attribute.initialValue");
        close("UML:Attribute");
    }

    void operation(const std::string& owner) {
        open("UML:Operation", " xmi.id=\"" + owner + "_operation\" name=\"recomputeOutstandingBalanceAfterTransfer\"");
        open("UML:BehavioralFeature.parameter");
        open("UML:Parameter", " name=\"transferAmountInEuroCents\" kind=\"in\"");
        open("UML:Parameter.type");
        line("<UML:DataType xmi.idref=\"int\"/>");
        close("UML:Parameter.type");
        close("UML:Parameter");
        close("UML:BehavioralFeature.parameter");
        close("UML:Operation");
    }

    void umlClass(int chain, int at) {
        std::string name = className(chain, at);
        open("UML:Class", " xmi.id=\"" + name + "\" name=\"" + name + "\" visibility=\"public\"");
        documentation(chain * depth + at);
        open("UML:Classifier.feature");
        attribute(name, 0, "int");
        attribute(name, 1, "real");
        operation(name);
        close("UML:Classifier.feature");
        close("UML:Class");
    }

    // Opens the package of one level of a chain and fills it up to the nested package.
    void levelPackage(int chain, int at) {
        open("UML:Package", " xmi.id=\"p" + std::to_string(chain) + "_" + std::to_string(at) +
                                "\" name=\"customerAccountManagementPackageLevel" + std::to_string(at) + "\"");
        open("UML:Namespace.ownedElement");
        comment(chain * depth + at);
        umlClass(chain, at);
    }

    std::string build(std::size_t bytes) {
        out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- a synthetic model: deep packages, long texts -->\n";
        out += "<XMI xmi.version=\"1.1\" xmlns:UML=\"org.omg.xmi.namespace.UML\">\n";
        out += "<XMI.header><XMI.documentation><XMI.exporter>synthetic prose</XMI.exporter></XMI.documentation>";
        out += "</XMI.header>\n<XMI.content>\n";
        out += "<UML:Model xmi.id=\"model\" name=\"Prose\">\n<UML:Namespace.ownedElement>\n";
        for (const char* type : {"int", "real"})
            out += std::string("<UML:DataType xmi.id=\"") + type + "\" name=\"" + type + "\"/>\n";
        const std::string ending = "</UML:Namespace.ownedElement>\n</UML:Model>\n</XMI.content>\n</XMI>\n";
        for (int chain = 0; out.size() + ending.size() < bytes; ++chain) {
            int opened = 0;
            while (opened < depth && out.size() + ending.size() < bytes) levelPackage(chain, opened++);
            while (opened-- > 0) {
                close("UML:Namespace.ownedElement");
                close("UML:Package");
            }
        }
        return out + ending;
    }
};
