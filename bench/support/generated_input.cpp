#include "bench/support/generated_input.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <utility>
#include <vector>

namespace tessera_bench {
namespace {

constexpr const char* head = R"(<?xml version="1.0" encoding="UTF-8"?>
<viewpoint>
  <queries>
    <query id="Load" from="nodes" key="id" format="percent:1">AVG(load)</query>
    <query id="Memory" from="nodes" key="id" format="binary:3" unit="B">MAX(memory)</query>
    <query id="Rate" from="links" key="id" format="si:3" unit="B/s">SUM(bytes) / SUM(seconds)</query>
    <query id="Share" from="links" key="id" format="percent:1">AVG(share)</query>
    <query id="Size" from="links" key="id" format="si:3" unit="B">SUM(bytes)</query>
  </queries>
  <diagram>
    <graph id="generated">
)";

constexpr std::array modeNames{"bandwidth", "ratio", "size"};
constexpr std::array locations{"from", "center", "to"};
constexpr std::array modeQueries{"Rate", "Share", "Size"};

// Nodes are n0, n1, ...; a group of ids [begin, end) is g and its first id.
void writeNodes(std::ostream& out, std::size_t begin, std::size_t end, std::size_t size) {
    for (std::size_t i = begin; i < end; i += size) {
        const std::size_t last = std::min(i + size, end);
        if (size == 1) {
            out << fmt::format("<node id=\"n{:07}\"/>\n", i);
            continue;
        }
        out << fmt::format("<node id=\"g{:07}_{}\">\n", i, size);
        writeNodes(out, i, last, size / groupSize);
        out << "</node>\n";
    }
}

void writeLinks(std::ostream& out, const InputShape& shape, InputCounts& counts) {
    LinkEnds ends(shape);
    counts.links = static_cast<std::size_t>(static_cast<double>(shape.nodes) * shape.linksPerNode);
    for (std::size_t i = 0; i < counts.links; ++i) {
        const auto [from, to] = ends.next();
        out << fmt::format("<link id=\"l{:07}\" from=\"n{:07}\" to=\"n{:07}\" direction=\"forward\"/>\n", i,
                           from, to);
    }
}

void writeDisplay(std::ostream& out, const InputShape& shape, InputCounts& counts) {
    std::mt19937 random(shape.seed + 1);
    const auto chosen = [&](double share) { return static_cast<double>(random() % 1000) < share * 1000; };
    for (std::size_t i = 0; i < shape.nodes; ++i) {
        out << fmt::format("<node id=\"n{0:07}\" displayName=\"Node {0}\" type=\"worker\"", i);
        if (!chosen(shape.nodesWithValues)) {
            out << "/>\n";
            continue;
        }
        out << fmt::format(
            "><rowSet displayName=\"Use\"><queryRef displayName=\"Load\">/Load/{0}</queryRef>"
            "<queryRef displayName=\"Memory\">/Memory/{0}</queryRef></rowSet></node>\n",
            i);
        counts.references += 2;
    }
    for (std::size_t i = 0; i < counts.links; ++i) {
        if (!chosen(shape.linksWithLabels)) continue;
        out << fmt::format(
            "<link id=\"l{:07}\" displayName=\"Link {}\"><label location=\"{}\">"
            "<dataTransfer displayName=\"Traffic\">",
            i, i, shape.allLocations ? locations.at(random() % locations.size()) : "center");
        for (std::size_t m = 0; m < shape.modes; ++m)
            out << fmt::format(
                "<{0}><rowSet displayName=\"Set\"><queryRef displayName=\"{1}\">/{1}/{2}</queryRef>"
                "</rowSet></{0}>",
                modeNames.at(m), modeQueries.at(m), i);
        out << "</dataTransfer></label></link>\n";
        counts.references += shape.modes;
    }
}

void execute(sqlite3* database, const std::string& sql) {
    if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) return;
    std::cerr << sqlite3_errmsg(database) << "\n";
    std::exit(1);
}

}  // namespace

InputCounts writeDocument(const InputShape& shape, const std::string& path) {
    InputCounts counts;
    counts.nodes = shape.nodes;
    std::ofstream out(path);
    out << head;
    writeNodes(out, 0, shape.nodes, shape.isFlat ? 1 : groupSize * groupSize);
    writeLinks(out, shape, counts);
    out << "</graph>\n<display><graph displayName=\"Generated\"/>\n";
    writeDisplay(out, shape, counts);
    out << "</display></diagram></viewpoint>\n";
    return counts;
}

void writeDatabase(const InputCounts& counts, const std::string& path) {
    sqlite3* database = nullptr;
    if (sqlite3_open(path.c_str(), &database) != SQLITE_OK) std::exit(1);
    const std::string upTo =
        "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i + 1 < {}) ";
    execute(database,
            "CREATE TABLE nodes(id INTEGER PRIMARY KEY, load REAL, memory INTEGER);"
            "CREATE TABLE links(id INTEGER PRIMARY KEY, bytes INTEGER, seconds REAL, share REAL);");
    execute(database, fmt::format(fmt::runtime("INSERT INTO nodes " + upTo +
                                               "SELECT i, (i % 97) / 97.0, i * 4096 FROM n"),
                                  counts.nodes));
    execute(database, fmt::format(fmt::runtime("INSERT INTO links " + upTo +
                                               "SELECT i, i * 1000 + 1, 1.0 + i % 7, (i % 89) / 89.0 FROM n"),
                                  counts.links));
    sqlite3_close(database);
}

}  // namespace tessera_bench
