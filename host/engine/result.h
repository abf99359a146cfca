// The interface of a database engine: an opened result, and snapshots of it that answer questions.
//
// Everything above (the table-tree engine, the check of declarations, panes) speaks to these interfaces only.
// An engine is a folder below host/engine/ that implements both and is listed in built_in_engines.cpp.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/engine/selection.h"
#include "host/error.h"
#include "host/values/cell_format.h"
#include "support/cancel_token.h"

namespace tessera_host {

using tessera_support::CancelSource;
using tessera_support::CancelToken;

// How much may be used. What reaches a limit fails with an error that names it; all else stays as it is.
struct QueryLimits {
    // For one call of a snapshot, the compiling of its statements included.
    std::chrono::milliseconds time{600'000};
    // Bytes. A request may take half of them for its values, a call of a snapshot the other half inside of the
    // database, and as many as all for temporary files.
    std::uint64_t memory = std::uint64_t{1} << 30U;
};

// Given with each call that may take long. Calls of one snapshot may have different options.
struct RunOptions {
    CancelToken cancel;  // ends the call within 100 ms with an error of kind cancelled
    QueryLimits limits;
};

// A value, unformatted, and what it cost.
struct Answer {
    CellValue value;
    // How much the engine had to do, as it counts it, in units of about 30 ns: compared with other figures of
    // the same engine, and with what is worth planning for. 0 when it is not known.
    std::uint64_t work = 0;
};

// How an engine would answer questions: one statement.
struct StatementPlan {
    enum class Method {
        oneByOne,  // one run of the statement for each choice of key values
        together,  // one run for all of them
    };

    Method method = Method::oneByOne;
    std::size_t questions = 0;      // how many of the questions it answers
    std::string sql;                // as it is sent to the database
    std::vector<std::string> plan;  // the database's own description, a line each
};

// One state of the database. All calls see the rows as they were when the snapshot was begun, whatever other
// programs write meanwhile. Used by one thread at a time; destroying it ends it. It keeps the result alive.
class ISnapshot {
  public:
    virtual ~ISnapshot() = default;
    ISnapshot(const ISnapshot&) = delete;
    ISnapshot& operator=(const ISnapshot&) = delete;

    // An error once the database was lost or has changed under the snapshot: every further question fails.
    // Cheap; a request calls it before its questions.
    [[nodiscard]] virtual Expected<void> state() const = 0;

    // The value of one question; NULL and the value over no rows are values too. An error says why there is
    // none: the selection is not acceptable, the statement failed or reached a limit (kind failed), or the
    // call was cancelled (kind cancelled). Its text is a clause for people that does not name the query. A
    // selection that is not acceptable stays so for the whole snapshot; further questions about it fail at
    // once.
    [[nodiscard]] virtual Expected<Answer> answer(const Question& question, const RunOptions& options) = 0;

    // Returns the values of many questions, from few statements. The result has an element for each question:
    // the value that answer() would return, or none when the caller has to call answer() for it. Elements
    // stay empty when the engine cannot be sure that the values would be equal, when a statement fails, and
    // when it takes more than `maxWork`. The only error is cancellation. REQUIRES: questions about one
    // selection are neighbours.
    [[nodiscard]] virtual Expected<std::vector<std::optional<CellValue>>> answerTogether(
        std::span<const Question> questions, std::uint64_t maxWork, const RunOptions& options) = 0;

    // An error when the filter cannot stand in any statement, whatever the table; its text is a clause for
    // people that names the filter. Nothing is run.
    [[nodiscard]] virtual Expected<void> checkFilter(const NamedFilter& filter) = 0;
    // Everything that the engine rejects in the selection, as clauses for people; nothing is run. When a limit
    // is reached, that is the last one; when the call is cancelled, the list ends early. REQUIRES:
    // checkFilter() accepts each of its filters.
    [[nodiscard]] virtual std::vector<std::string> check(const Selection& selection,
                                                         const RunOptions& options) = 0;

    // The statements that could answer the questions; nothing is run. A selection that is not acceptable is
    // an error.
    [[nodiscard]] virtual Expected<std::vector<StatementPlan>> explain(std::span<const Question> questions,
                                                                       const RunOptions& options) = 0;

  protected:
    ISnapshot() = default;
};

// An opened database. It is only read: nothing that SQL of a document says can write to it, or reach files,
// the network or settings. Any thread; several snapshots may exist at once, each on its own thread. Held by
// std::shared_ptr; panes and snapshots share it.
class IResult {
  public:
    virtual ~IResult() = default;
    IResult(const IResult&) = delete;
    IResult& operator=(const IResult&) = delete;

    // As it was given to EngineRegistry::open().
    [[nodiscard]] virtual const std::string& address() const noexcept = 0;
    // The name of the engine, for messages.
    [[nodiscard]] virtual std::string_view engineName() const noexcept = 0;

    // Begins a snapshot of the newest state. Waits for locks of other programs as long as the options of
    // opening allow. Between snapshots no lock is held. The error is a clause for people that names the file
    // where it is about the file.
    [[nodiscard]] virtual Expected<std::unique_ptr<ISnapshot>> begin(const RunOptions& options) = 0;

  protected:
    IResult() = default;
};

}  // namespace tessera_host
