// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Reading and writing connection list documents, compared with Qt's own classes and with a fast parser.

#include "benchmarks/lists.h"
#include "benchmarks/runner.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <pugixml.hpp>

namespace {

void Read(benchmark::State& state, int entries)
{
    const QByteArray document = Lists::Document(Lists::Entries(entries));
    for (auto iteration : state) {
        std::vector<Connection> read;
        state.SetIterationTime(Runner::Seconds(
            [&] { ConnectionList::Read(document, [&read](const Connection& entry) { read.push_back(entry); }); }));
        if (read.size() != static_cast<std::size_t>(entries))
            state.SkipWithError("not all entries were read");
    }
}

void ReadTokens(benchmark::State& state, int entries)
{
    const QByteArray document = Lists::Document(Lists::Entries(entries));
    for (auto iteration : state) {
        state.SetIterationTime(Runner::Seconds([&] {
            QXmlStreamReader reader(document);
            while (!reader.atEnd())
                benchmark::DoNotOptimize(reader.readNext());
        }));
    }
}

void ReadTree(benchmark::State& state, int entries)
{
    const QByteArray document = Lists::Document(Lists::Entries(entries));
    for (auto iteration : state) {
        state.SetIterationTime(Runner::Seconds([&] {
            pugi::xml_document tree;
            benchmark::DoNotOptimize(tree.load_buffer(document.constData(), static_cast<std::size_t>(document.size())));
        }));
    }
}

void Write(benchmark::State& state, int entries)
{
    const std::vector<Connection> list = Lists::Entries(entries);
    for (auto iteration : state)
        state.SetIterationTime(Runner::Seconds([&] { benchmark::DoNotOptimize(Lists::Document(list)); }));
}

void WriteTree(benchmark::State& state, int entries)
{
    QDomDocument tree;
    tree.setContent(Lists::Document(Lists::Entries(entries)));
    for (auto iteration : state)
        state.SetIterationTime(Runner::Seconds([&] { benchmark::DoNotOptimize(tree.toByteArray(2)); }));
}

struct Token
{
    QXmlStreamReader::TokenType type;
    QString text;
    bool isCData;
};

std::vector<Token> Tokens(int entries)
{
    std::vector<Token> tokens;
    QXmlStreamReader reader(Lists::Document(Lists::Entries(entries)));
    while (!reader.atEnd()) {
        const auto type = reader.readNext();
        tokens.push_back({type,
                          type == QXmlStreamReader::StartElement ? reader.name().toString() : reader.text().toString(),
                          reader.isCDATA()});
    }
    return tokens;
}

/// Builds, serialises and deletes a tree of the same tokens.
void MakeAndWriteTree(benchmark::State& state, int entries)
{
    const std::vector<Token> tokens = Tokens(entries);
    for (auto iteration : state) {
        state.SetIterationTime(Runner::Seconds([&] {
            QDomDocument tree;
            // Qt serialises differently if the document declares its encoding.
            tree.appendChild(tree.createProcessingInstruction(QStringLiteral("xml"),
                                                              QStringLiteral("version=\"1.0\" encoding=\"utf-8\"")));
            QDomNode at = tree;
            for (const Token& token : tokens)
                if (token.type == QXmlStreamReader::StartElement)
                    at = at.appendChild(tree.createElement(token.text));
                else if (token.type == QXmlStreamReader::EndElement)
                    at = at.parentNode();
                else if (token.isCData)
                    at.appendChild(tree.createCDATASection(token.text));
                else if (token.type == QXmlStreamReader::Characters && !token.text.trimmed().isEmpty())
                    at.appendChild(tree.createTextNode(token.text));
            benchmark::DoNotOptimize(tree.toByteArray(2));
        }));
    }
}

/// Writes the same tokens one by one.
void WriteTokens(benchmark::State& state, int entries)
{
    const std::vector<Token> tokens = Tokens(entries);
    for (auto iteration : state) {
        state.SetIterationTime(Runner::Seconds([&] {
            QByteArray document;
            QXmlStreamWriter writer(&document);
            for (const Token& token : tokens)
                if (token.type == QXmlStreamReader::StartElement)
                    writer.writeStartElement(token.text);
                else if (token.type == QXmlStreamReader::EndElement)
                    writer.writeEndElement();
                else if (token.isCData)
                    writer.writeCDATA(token.text);
                else if (token.type == QXmlStreamReader::Characters)
                    writer.writeCharacters(token.text);
            benchmark::DoNotOptimize(document);
        }));
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Runner::Enter("read a document", "product", Read);
    Runner::Enter("read a document", "QXmlStreamReader, tokens only", ReadTokens);
    Runner::Enter("read a document", "pugixml, building a tree", ReadTree);
    Runner::Enter("write a document", "product", Write);
    Runner::Enter("write a document", "QDomDocument, existing tree", WriteTree);
    Runner::Enter("write a document", "QDomDocument, including the tree", MakeAndWriteTree);
    Runner::Enter("write a document", "QXmlStreamWriter, existing tokens", WriteTokens);
    return Runner::Run(argc, argv);
}
