// The synthetic model of `XmiGenerator` as a UML 2 tool saves it in XMI 2.x: the same packages
// of 40 classes, four attributes and three operations each, an association from every third
// class to its predecessor and a generalization from every fourth, with the defaults written
// out as tools that write them do.
#pragma once

#include <cstddef>
#include <string>

class Xmi2Generator {
   public:
    // A model of at least `bytes` bytes.
    static std::string model(std::size_t bytes) {
        Xmi2Generator generator;
        return generator.build(bytes);
    }

   private:
    static constexpr int classesPerPackage = 40;

    std::string out;

    // Appends the pieces in order.
    template <class... Pieces>
    void put(const Pieces&... pieces) {
        (out.append(pieces), ...);
    }

    static std::string className(int i) { return "Class" + std::to_string(i); }
    // "a12_3": a letter, then two numbers joined by "_".
    static std::string key(const char* letter, int a, int b) {
        std::string out(letter);
        out.append(std::to_string(a)).append("_").append(std::to_string(b));
        return out;
    }

    void bounds(const std::string& id, const char* lower, const char* upper) {
        put("<lowerValue xmi:type=\"uml:LiteralInteger\" xmi:id=\"", id, "l\" value=\"", lower, "\"/>\n");
        put("<upperValue xmi:type=\"uml:LiteralUnlimitedNatural\" xmi:id=\"", id, "u\" value=\"", upper, "\"/>\n");
    }

    void attribute(int owner, int k) {
        std::string id = key("a", owner, k);
        std::string type = k == 1 && owner > 0 ? className(owner - 1) : k == 2 ? "real" : "int";
        put("<ownedAttribute xmi:type=\"uml:Property\" xmi:id=\"", id, "\" name=\"field", std::to_string(k),
            "\" visibility=\"", (k % 2 == 0 ? "public" : "private"), "\" type=\"", type,
            "\" isStatic=\"false\" isReadOnly=\"false\">\n");
        bounds(id, k == 3 ? "0" : "1", k == 3 ? "*" : "1");
        if (k == 0)
            put("<defaultValue xmi:type=\"uml:LiteralInteger\" xmi:id=\"", id, "d\" value=\"", std::to_string(owner),
                "\"/>\n");
        put("</ownedAttribute>\n");
    }

    void parameter(const std::string& id, const char* name, const char* direction, const std::string& type) {
        put("<ownedParameter xmi:type=\"uml:Parameter\" xmi:id=\"", id, name, "\" name=\"", name, "\" direction=\"",
            direction, "\" type=\"", type, "\"/>\n");
    }

    void operation(int owner, int k) {
        std::string id = key("o", owner, k);
        const char* names[] = {"", "compute", "+"};
        std::string name = k == 0 ? className(owner) : names[k];
        put("<ownedOperation xmi:type=\"uml:Operation\" xmi:id=\"", id, "\" name=\"", name,
            "\" visibility=\"public\" isStatic=\"false\" isAbstract=\"false\">\n");
        parameter(id, "x", "in", "int");
        if (k >= 1) parameter(id, "y", "in", className(owner));
        if (k >= 1) parameter(id, "r", "return", k == 1 ? "real" : "bool");
        put("</ownedOperation>\n");
    }

    void umlClass(int i) {
        put("<packagedElement xmi:type=\"uml:Class\" xmi:id=\"", className(i), "\" name=\"", className(i),
            "\" visibility=\"public\">\n");
        if (i > 0 && i % 4 == 0)
            put("<generalization xmi:type=\"uml:Generalization\" xmi:id=\"g", std::to_string(i), "\" general=\"",
                className(i - 1), "\"/>\n");
        for (int k = 0; k < 4; ++k) attribute(i, k);
        for (int k = 0; k < 3; ++k) operation(i, k);
        put("</packagedElement>\n");
    }

    void associationEnd(int i, int side, const std::string& target) {
        std::string id = key("e", i, side);
        put("<ownedEnd xmi:type=\"uml:Property\" xmi:id=\"", id, "\" name=\"end", std::to_string(side), "\" type=\"",
            target, "\" association=\"as", std::to_string(i), "\">\n");
        bounds(id, "0", side == 0 ? "1" : "*");
        put("</ownedEnd>\n");
    }

    void association(int i) {
        if (i == 0 || i % 3 != 0) return;
        std::string ends = key("e", i, 0) + " " + key("e", i, 1);
        put("<packagedElement xmi:type=\"uml:Association\" xmi:id=\"as", std::to_string(i), "\" name=\"link",
            std::to_string(i), "\" memberEnd=\"", ends, "\" navigableOwnedEnd=\"", ends, "\">\n");
        associationEnd(i, 0, className(i - 1));
        associationEnd(i, 1, className(i));
        put("</packagedElement>\n");
    }

    std::string build(std::size_t bytes) {
        out =
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xmi:XMI xmi:version=\"2.1\" "
            "xmlns:xmi=\"http://schema.omg.org/spec/XMI/2.1\" xmlns:uml=\"http://schema.omg.org/spec/UML/2.1\">\n"
            "<uml:Model xmi:type=\"uml:Model\" xmi:id=\"model\" name=\"Synthetic\">\n";
        for (const char* type : {"int", "real", "bool"})
            put(std::string("<packagedElement xmi:type=\"uml:PrimitiveType\" xmi:id=\""), type, "\" name=\"", type,
                "\"/>\n");
        const std::string ending = "</uml:Model>\n</xmi:XMI>\n";
        for (int package = 0, i = 0; out.size() + ending.size() < bytes; ++package) {
            put("<packagedElement xmi:type=\"uml:Package\" xmi:id=\"p", std::to_string(package), "\" name=\"package",
                std::to_string(package), "\">\n");
            for (int k = 0; k < classesPerPackage && out.size() + ending.size() < bytes; ++k, ++i) {
                umlClass(i);
                association(i);
            }
            put("</packagedElement>\n");
        }
        return out + ending;
    }
};
