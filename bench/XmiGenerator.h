// Synthetic XMI models for the benchmarks: deterministic, grown class by class until the text
// reaches a wanted size. Classes sit in packages of 40; every class has four attributes (data
// types and references to other classes, with multiplicities and an initial value) and three
// operations (a constructor, a function with parameters and a result, an operator); every third
// class is joined to its predecessor by an association, and every fourth inherits from it.
// Even packages use the short "UML:" tags, odd ones the long metamodel tags.
#pragma once

#include <cstddef>
#include <string>

class XmiGenerator {
public:
    // A model of at least `bytes` bytes.
    static std::string model(std::size_t bytes) {
        XmiGenerator generator;
        return generator.build(bytes);
    }

private:
    static constexpr int classesPerPackage = 40;

    std::string out;
    bool longTags = false;

    // The tag of a metamodel element in the form of the package being written.
    std::string tag(const char* package, const char* name) const {
        return longTags ? std::string(package) + "." + name : std::string("UML:") + name;
    }
    std::string core(const char* name) const { return tag("Foundation.Core", name); }
    std::string data(const char* name) const { return tag("Foundation.Data_Types", name); }

    void open(const std::string& name, const std::string& attributes = "") {
        out += "<" + name + attributes + ">\n";
    }
    void close(const std::string& name) { out += "</" + name + ">\n"; }
    void reference(const std::string& property, const std::string& kind, const std::string& id) {
        out += "<" + property + "><" + core(kind.c_str()) + " xmi.idref=\"" + id + "\"/></" + property + ">\n";
    }

    void multiplicity(const std::string& property, const char* lower, const char* upper) {
        open(property);
        open(data("Multiplicity"));
        open(data("Multiplicity.range"));
        out.append("<").append(data("MultiplicityRange")).append(" lower=\"").append(lower).append("\" upper=\"");
        out.append(upper).append("\"/>\n");
        close(data("Multiplicity.range"));
        close(data("Multiplicity"));
        close(property);
    }

    static std::string className(int i) { return "Class" + std::to_string(i); }
    // "a12_3": a letter, then two numbers joined by "_".
    static std::string key(const char* letter, int a, int b) {
        std::string out(letter);
        out.append(std::to_string(a)).append("_").append(std::to_string(b));
        return out;
    }

    void attribute(int owner, int k) {
        std::string id = key("a", owner, k);
        open(core("Attribute"), " xmi.id=\"" + id + "\" name=\"field" + std::to_string(k) + "\" visibility=\"" +
                                    (k % 2 == 0 ? "public" : "private") + "\"");
        multiplicity(core("StructuralFeature.multiplicity"), k == 3 ? "0" : "1", k == 3 ? "*" : "1");
        if (k == 1 && owner > 0)
            reference(core("StructuralFeature.type"), "Class", className(owner - 1));
        else
            reference(core("StructuralFeature.type"), "DataType", k == 2 ? "real" : "int");
        if (k == 0) {
            open(core("Attribute.initialValue"));
            out += "<" + data("Expression") + " body=\"" + std::to_string(owner) + "\"/>\n";
            close(core("Attribute.initialValue"));
        }
        close(core("Attribute"));
    }

    void parameter(const char* name, const char* kind, const std::string& typeKind, const std::string& type) {
        open(core("Parameter"), std::string(" name=\"") + name + "\" kind=\"" + kind + "\"");
        reference(core("Parameter.type"), typeKind, type);
        close(core("Parameter"));
    }

    void operation(int owner, int k) {
        std::string id = key("o", owner, k);
        const char* names[] = {"", "compute", "+"};
        std::string name = k == 0 ? className(owner) : names[k];
        open(core("Operation"), " xmi.id=\"" + id + "\" name=\"" + name + "\" visibility=\"public\"");
        open(core("BehavioralFeature.parameter"));
        parameter("x", "in", "DataType", "int");
        if (k >= 1) parameter("y", "in", "Class", className(owner));
        if (k >= 1) parameter("r", "return", "DataType", k == 1 ? "real" : "bool");
        close(core("BehavioralFeature.parameter"));
        close(core("Operation"));
    }

    void umlClass(int i) {
        open(core("Class"), " xmi.id=\"" + className(i) + "\" name=\"" + className(i) + "\" visibility=\"public\"");
        open(core("Classifier.feature"));
        for (int k = 0; k < 4; ++k) attribute(i, k);
        for (int k = 0; k < 3; ++k) operation(i, k);
        close(core("Classifier.feature"));
        close(core("Class"));
    }

    void associationEnd(int i, int side, const std::string& target) {
        open(core("AssociationEnd"), " xmi.id=\"e" + std::to_string(i) + "_" + std::to_string(side) + "\" name=\"end" +
                                         std::to_string(side) + "\" isNavigable=\"true\"");
        multiplicity(core("AssociationEnd.multiplicity"), "0", side == 0 ? "1" : "*");
        reference(core("AssociationEnd.type"), "Class", target);
        close(core("AssociationEnd"));
    }

    void relationships(int i) {
        if (i == 0) return;
        if (i % 3 == 0) {
            open(core("Association"), " xmi.id=\"as" + std::to_string(i) + "\" name=\"link" + std::to_string(i) + "\"");
            open(core("Association.connection"));
            associationEnd(i, 0, className(i - 1));
            associationEnd(i, 1, className(i));
            close(core("Association.connection"));
            close(core("Association"));
        }
        if (i % 4 == 0) {
            open(core("Generalization"), " xmi.id=\"g" + std::to_string(i) + "\"");
            reference(core("Generalization.child"), "Class", className(i));
            reference(core("Generalization.parent"), "Class", className(i - 1));
            close(core("Generalization"));
        }
    }

    std::string build(std::size_t bytes) {
        out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<XMI xmi.version=\"1.1\" xmlns:UML=\"org.omg.xmi.namespace.UML\">\n<XMI.content>\n";
        out += "<UML:Model xmi.id=\"model\" name=\"Synthetic\">\n<UML:Namespace.ownedElement>\n";
        for (const char* type : {"int", "real", "bool"})
            out += std::string("<UML:DataType xmi.id=\"") + type + "\" name=\"" + type + "\"/>\n";
        const std::string ending = "</UML:Namespace.ownedElement>\n</UML:Model>\n</XMI.content>\n</XMI>\n";
        for (int package = 0, i = 0; out.size() + ending.size() < bytes; ++package) {
            longTags = package % 2 == 1;
            std::string packageTag = tag("Model_Management", "Package");
            std::string owned = core("Namespace.ownedElement");
            open(packageTag, " xmi.id=\"p" + std::to_string(package) + "\" name=\"package" + std::to_string(package) + "\"");
            open(owned);
            for (int k = 0; k < classesPerPackage && out.size() + ending.size() < bytes; ++k, ++i) {
                umlClass(i);
                relationships(i);
            }
            close(owned);
            close(packageTag);
        }
        return out + ending;
    }
};
