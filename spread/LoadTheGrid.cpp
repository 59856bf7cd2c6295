#include "spread/LoadTheGrid.h"

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <optional>
#include <exception>
#include <mutex>
#include <set>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/ComputedColumns.h"
#include "spread/FormatSpreadsheet.h"
#include "spread/GridRow.h"

namespace spread {
namespace {

constexpr int kDefaultBlock = 4096;
constexpr std::size_t kChunksPerWorker = 8;

// Faults of the astronomy routines, gathered from the worker threads and reported once each on
// the loading thread; the fatal one unwinds its worker. Several workers may meet the fatal
// fault at once, each with its own value: only the first is reported, as the process ends
// after one message.
class GatheredFaults : public astro::FaultSink
{
public:
    struct Fatal
    {
        int exitCode;
    };

    void ReportFault(std::string_view message, std::string_view location) override
    {
        std::lock_guard lock(mutex_);
        if (location == astro::kFatalFaultLocation) {
            if (fatalSeen_)
                return;
            fatalSeen_ = true;
        }
        std::pair<std::string, std::string> fault{std::string(message), std::string(location)};
        if (seen_.insert(fault).second)
            faults_.push_back(std::move(fault));
    }
    void EndProcess(int exitCode) override { throw Fatal{exitCode}; }

    // Reports what was gathered since the last call.
    void Flush(services::UiPort& ui)
    {
        std::vector<std::pair<std::string, std::string>> faults;
        {
            std::lock_guard lock(mutex_);
            faults.swap(faults_);
        }
        for (const auto& [message, location] : faults)
            ui.ReportFault(message, location);
    }

    // Drops what was gathered since the last call: the faults of rows that are not appended.
    void Discard()
    {
        std::lock_guard lock(mutex_);
        faults_.clear();
    }

private:
    std::mutex mutex_;
    bool fatalSeen_ = false;
    std::set<std::pair<std::string, std::string>> seen_;
    std::vector<std::pair<std::string, std::string>> faults_;
};

// The fields of the query, taken once by name.
struct BoundFields
{
    data::Field ObjectID, OtherID, ObjectType, RAhours, RAminutes, DeclinationDegrees,
        DeclinationMinutes, constellation, ObjectSize, Magnitude, Magnitude2, MCode,
        Description, Catalog, ImageFile, Observed, EPOCH, GalacticLongitude, GalacticLatitude,
        PositionAngle, Separation, ID, HObject;
};

BoundFields Bind(data::Recordset& rs, bool joined)
{
    BoundFields f;
    f.ObjectID = rs.Fields(joined ? "SelvaneTable.ObjectID" : "ObjectID");
    f.Catalog = rs.Fields(joined ? "SelvaneTable.Catalog" : "Catalog");
    f.OtherID = rs.Fields("OtherID");
    f.ObjectType = rs.Fields("ObjectType");
    f.RAhours = rs.Fields("RAhours");
    f.RAminutes = rs.Fields("RAminutes");
    f.DeclinationDegrees = rs.Fields("DeclinationDegrees");
    f.DeclinationMinutes = rs.Fields("DeclinationMinutes");
    f.constellation = rs.Fields("constellation");
    f.ObjectSize = rs.Fields("ObjectSize");
    f.Magnitude = rs.Fields("Magnitude");
    f.Magnitude2 = rs.Fields("Magnitude2");
    f.MCode = rs.Fields("MCode");
    f.Description = rs.Fields("Description");
    f.ImageFile = rs.Fields("ImageFile");
    f.Observed = rs.Fields("Observed");
    f.EPOCH = rs.Fields("EPOCH");
    f.GalacticLongitude = rs.Fields("GalacticLongitude");
    f.GalacticLatitude = rs.Fields("GalacticLatitude");
    f.PositionAngle = rs.Fields("PositionAngle");
    f.Separation = rs.Fields("Separation");
    f.ID = rs.Fields("ID");
    f.HObject = rs.Fields("HObject");
    return f;
}

// A null reads as 0, so only a 0 needs the second look.
NumberField Number(const data::Field& field)
{
    const double value = field.Double();
    return value == 0 && field.IsNull() ? NumberField{} : NumberField::Of(value);
}

// A block of records copied out of the record set (its texts live only until it moves), in
// buffers that are reused from block to block.
class RecordBlock
{
public:
    void Clear()
    {
        arena_.clear();
        spans_.clear();
        records_.clear();
    }

    void Read(const BoundFields& f, bool observed, std::string_view planMark)
    {
        ObjectRecord r;
        r.RAhours = Number(f.RAhours);
        r.RAminutes = Number(f.RAminutes);
        r.DeclinationDegrees = Number(f.DeclinationDegrees);
        r.DeclinationMinutes = Number(f.DeclinationMinutes);
        r.ObjectSize = Number(f.ObjectSize);
        r.Magnitude = Number(f.Magnitude);
        r.Magnitude2 = Number(f.Magnitude2);
        r.EPOCH = Number(f.EPOCH);
        r.GalacticLongitude = Number(f.GalacticLongitude);
        r.GalacticLatitude = Number(f.GalacticLatitude);
        r.PositionAngle = Number(f.PositionAngle);
        r.Separation = Number(f.Separation);
        r.ID = f.ID.Long();
        r.Observed = observed;
        records_.push_back(r);
        for (const data::Field* field :
             {&f.ObjectID, &f.OtherID, &f.ObjectType, &f.constellation, &f.MCode, &f.Description,
              &f.Catalog, &f.ImageFile, &f.HObject}) {
            Keep(field->Text());
        }
        Keep(planMark);
    }

    // Points each record's texts into the arena, once the block is complete.
    void Seal()
    {
        std::size_t s = 0;
        for (ObjectRecord& r : records_) {
            for (std::string_view* text :
                 {&r.ObjectID, &r.OtherID, &r.ObjectType, &r.constellation, &r.MCode,
                  &r.Description, &r.Catalog, &r.ImageFile, &r.HObject, &r.planMark}) {
                *text = std::string_view(arena_).substr(spans_[s].first, spans_[s].second);
                ++s;
            }
        }
    }

    std::size_t Size() const { return records_.size(); }
    const ObjectRecord& operator[](std::size_t i) const { return records_[i]; }

private:
    void Keep(std::string_view text)
    {
        spans_.emplace_back(arena_.size(), text.size());
        arena_.append(text);
    }

    std::string arena_;
    std::vector<std::pair<std::size_t, std::size_t>> spans_;
    std::vector<ObjectRecord> records_;
};

// The rows of one chunk of a block, as computed by one worker.
struct RowSlice
{
    struct Row
    {
        std::size_t offset;
        std::size_t length;
        RowVerdict verdict;
    };
    std::string text;
    std::vector<Row> rows;
    CellWidths widths{}; // the widest cells of the kept rows
    std::string scratch;

    void Clear()
    {
        text.clear();
        rows.clear();
        widths = {};
    }
};

struct RowContext
{
    const RowOptions& options;
    const astro::ObservingClock& clock;
    const astro::Clock& computerClock;
    GatheredFaults& faults;
    // While targeting is on: the target, and the separation limits a kept row's distance to it
    // must meet (none for a plan load, whose row filters are off).
    const TargetCentre* target = nullptr;
    const SeparationLimits* separationLimits = nullptr;
};

void ComputeSlice(const RecordBlock& block, std::size_t begin, std::size_t end,
                  const RowContext& context, RowSlice& out)
{
    for (std::size_t i = begin; i < end; ++i) {
        ObjectRecord record = block[i];
        Position position;
        const bool hasPosition = StoredPosition(record, position);
        ComputedColumns computed;
        if (hasPosition) {
            const double epoch = record.EPOCH.null ? 2000.0 : record.EPOCH.value;
            ComputeColumns(context.options, context.clock, context.computerClock, epoch, position,
                           computed, context.faults);
        }
        if (context.target && hasPosition) {
            // The row's position as its R.A. and Dec. cells show it.
            const double separation = SeparationFrom(
                *context.target, {position.raHours, position.raMinutes, position.raSeconds},
                {position.decDegrees, position.decMinutes, position.decSeconds}, context.faults);
            record.targetSeparation = NumberField::Of(separation);
            if (context.separationLimits && !context.separationLimits->Holds(separation)) {
                out.rows.push_back({out.text.size(), 0, RowVerdict{}});
                continue;
            }
        }
        const RowVerdict verdict =
            WriteGridRow(record, !hasPosition, position, computed, context.options, out.scratch);
        out.rows.push_back({out.text.size(), out.scratch.size(), verdict});
        out.text.append(out.scratch);
        if (verdict.kept)
            WidenCellWidths(out.scratch, out.widths);
    }
}

// The worker threads of one load. Start hands them the chunks of a block and returns at once,
// so that the loading thread can append the rows of the previous block and read the next one
// meanwhile; Help lets the loading thread take the chunks still waiting; Wait returns when every
// chunk is done. A job must not throw.
class BlockWorkers
{
public:
    explicit BlockWorkers(std::size_t count)
    {
        threads_.reserve(count);
        try {
            for (std::size_t i = 0; i < count; ++i)
                threads_.emplace_back([this] { Work(); });
        } catch (...) {
            Stop();
            throw;
        }
    }
    ~BlockWorkers() { Stop(); }
    BlockWorkers(const BlockWorkers&) = delete;
    BlockWorkers& operator=(const BlockWorkers&) = delete;

    void Start(std::size_t chunks, std::function<void(std::size_t chunk)> job)
    {
        {
            std::lock_guard lock(mutex_);
            job_ = std::move(job);
            chunks_ = chunks;
            next_ = 0;
            finished_ = 0;
        }
        wake_.notify_all();
    }

    void Help()
    {
        std::unique_lock lock(mutex_);
        while (next_ < chunks_)
            RunNext(lock);
    }

    void Wait()
    {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [this] { return finished_ == chunks_; });
    }

private:
    // Ends the threads once the chunks they hold are done; chunks not yet taken are dropped.
    void Stop()
    {
        {
            std::lock_guard lock(mutex_);
            stop_ = true;
        }
        wake_.notify_all();
        threads_.clear(); // joins
    }

    void Work()
    {
        std::unique_lock lock(mutex_);
        for (;;) {
            wake_.wait(lock, [this] { return stop_ || next_ < chunks_; });
            if (stop_)
                return;
            RunNext(lock);
        }
    }

    // Runs the next chunk with the lock released.
    void RunNext(std::unique_lock<std::mutex>& lock)
    {
        const std::size_t chunk = next_++;
        lock.unlock();
        job_(chunk);
        lock.lock();
        if (++finished_ == chunks_)
            done_.notify_one();
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable done_;
    std::function<void(std::size_t)> job_;
    std::size_t chunks_ = 0;
    std::size_t next_ = 0;
    std::size_t finished_ = 0;
    bool stop_ = false;
    std::vector<std::jthread> threads_;
};

RowOptions OptionsFrom(const data::Preferences& p, bool planLoad)
{
    RowOptions o;
    o.speed1 = p.speed1;
    o.Palt = p.Palt == "Y";
    o.Prise = p.Prise == "Y";
    o.optimum = p.optimum;
    o.ShowCharts = p.ShowCharts;
    if (!p.speed1)
        SetPrecessionDate(o, p.PPre, data::RegionalOf(p));
    o.PInterval = p.PInterval;
    o.PlanLoad = planLoad;
    o.hasMinAlt = !services::vb::Trim(p.Pminalt).empty();
    o.Pminalt = services::vb::Val(p.Pminalt);
    o.PAzm1 = p.PAzm1;
    o.PAzm2 = p.PAzm2;
    o.PAzm3 = p.PAzm3;
    o.PAzm4 = p.PAzm4;
    o.Psupo = p.Psupo == "Y";
    o.Shers = p.Shers;
    return o;
}

bool LoggedInLogbook(data::Database& logbook, std::string_view objectId)
{
    data::Recordset rs = logbook.OpenRecordset(
        "Select ObjectId From Logbook Where ObjectID = '" +
            services::vb::QuoteForSql(objectId) + "'",
        data::Snapshot);
    return !rs.Eof();
}

// The "pln" marks of the current tab's plan, looked up by record id.
class PlanMarks
{
public:
    explicit PlanMarks(const TabPlan& plan) : count_(plan.PlanCount())
    {
        for (const PlanEntry& e : plan.entries)
            marks_.emplace(e.PlanRecordID, e.PlanNote.empty() ? "X" : "X*");
    }
    std::string_view Mark(double recordId) const
    {
        if (marks_.empty())
            return " ";
        const auto it = marks_.find(recordId);
        return it == marks_.end() ? std::string_view(" ") : it->second;
    }
    int Count() const { return count_; }

private:
    std::unordered_map<double, std::string_view> marks_;
    int count_;
};

// Step 4 of the load: the SQL from the filter, through the caller's builder when it gives one.
void BuildSql(AppState& TMM, const GridLoad& load)
{
    if (load.BuildSQLSelectString) {
        TMM.SQL = load.BuildSQLSelectString();
        return;
    }
    if (!TMM.objectDb)
        throw services::Fault("The database is not open.", LoadLocation);
    const data::SqlSelect select =
        data::BuildSQLSelectString(FilterForSql(TMM.target, data::FilterFromPreferences(TMM.prefs)),
                                   data::LoadFilterLookups(*TMM.objectDb));
    TMM.SQL = select.SQL;
    TMM.OrderBy = select.OrderBy;
}

} // namespace

astro::ObservingClock ClockFrom(const data::Preferences& p)
{
    astro::ObservingClock c;
    c.UseRealTime = p.UseRealTime;
    // The observing date is kept in the regional short form; the astronomy routines take it
    // as YYYY-MM-DD. A text that is no date passes as it is (blank means today).
    c.PDate = p.PDate;
    if (const auto date = services::vb::ParseDate(p.PDate, data::RegionalOf(p)))
        c.PDate = date->toString(Qt::ISODate).toStdString();
    c.Ptime = p.Ptime;
    c.Plat = p.Plat;
    c.Plon = p.PLon;
    c.PTz = p.PTz;
    c.PStd = p.PStd;
    c.timesAMPM = p.timesAMPM;
    return c;
}

LoadMode ParseLoadMode(std::string_view mode)
{
    return services::vb::UCase(services::vb::Trim(mode)) == "BUILD" ? LoadMode::Build
                                                                      : LoadMode::NoBuild;
}

void LoadTheGrid(AppState& TMM, Grid& grid, LoadMode mode, GridLoad& load,
                 const astro::Clock& computerClock)
{
    services::UiPort& ui = TMM.ui;
    const data::Preferences& prefs = TMM.prefs;
    bool seenGcvs = false;
    bool seenOther = false;
    load.cancelled = false;
    load.failed = false;
    load.allGcvs = false;

    if (TMM.QueryRunning) {
        ui.ShowMessage(OneQueryText, OneQueryTitle, "I");
        return;
    }
    if (TMM.CurrTab < 0 || TMM.CurrTab > 4)
        return;

    ui.Busy(services::BusyKind::Loading);
    grid.SetReDraw(false);
    grid.SetMaxRows(0);

    const PlanMarks marks(TMM.plans[static_cast<std::size_t>(TMM.CurrTab)]);
    int rows = 0;
    GatheredFaults faults;
    int fatalExit = -1;
    // The widest cells of the rows as they are appended; measured only when the load ends
    // without a failure.
    CellWidths rowWidths{};
    bool widthsMeasured = false;
    load.failed = !services::Trap(ui, LoadLocation, [&] {
        if (mode == LoadMode::Build)
            BuildSql(TMM, load);

        data::Database* db = TMM.UseLogDatabase ? TMM.logbookDb.get() : TMM.objectDb.get();
        if (!db)
            throw services::Fault("The database is not open.", LoadLocation);
        data::Recordset rs = db->OpenRecordset(TMM.SQL, data::Snapshot);
        long count = 0;
        if (!rs.Eof()) {
            rs.MoveLast();
            count = rs.RecordCount();
            rs.MoveFirst();
        }
        const long rowret = prefs.rowret;
        ui.Progress(static_cast<int>(rowret > 0 && rowret < count ? rowret : count));
        TMM.status.selected = "Selected " + std::to_string(count) + " objects";
        TMM.QueryRunning = true;
        TMM.lastLoadSql = TMM.SQL;

        const BoundFields fields = Bind(rs, TMM.UseLogDatabase && prefs.UseCd);
        const RowOptions options = OptionsFrom(prefs, TMM.PlanLoad);
        const astro::ObservingClock clock = ClockFrom(prefs);
        // The mount, when it is the target, is read once for the whole load.
        TMM.target.TargetPositionRead = false;
        const std::optional<TargetCentre> target =
            TMM.target.TargetingOn ? TargetCentreOf(TMM.target) : std::nullopt;
        const SeparationLimits separationLimits =
            SeparationLimitsOf(data::FilterFromPreferences(prefs));
        const RowContext context{options,
                                 clock,
                                 computerClock,
                                 faults,
                                 target ? &*target : nullptr,
                                 target && !TMM.PlanLoad ? &separationLimits : nullptr};

        const bool askLogbook = prefs.DataLogType && TMM.logbookDb;
        auto readBlock = [&](RecordBlock& block, std::size_t size) {
            block.Clear();
            while (!rs.Eof() && block.Size() < size) {
                const bool observed = askLogbook
                                          ? LoggedInLogbook(*TMM.logbookDb, fields.ObjectID.Text())
                                          : fields.Observed.Bool();
                const double recordId = fields.ID.Double(); // 0 for null
                const std::string_view mark =
                    load.planMark ? load.planMark(recordId) : marks.Mark(recordId);
                block.Read(fields, observed, mark);
                rs.MoveNext();
            }
            block.Seal();
        };

        // Two blocks in turn: while the workers compute one, this thread appends the rows of the
        // one before, reads the one after and then computes beside the workers. The rows are
        // appended in record order, with the row limit and the cancel checked row by row, so at
        // most one block is read, and computed, beyond the last row kept.
        const std::size_t blockSize =
            static_cast<std::size_t>(load.blockSize > 0 ? load.blockSize : kDefaultBlock);
        struct Batch
        {
            RecordBlock records;
            std::vector<RowSlice> slices;
            std::vector<std::exception_ptr> errors;
            std::size_t chunks = 0;
        };
        Batch batches[2];
        // This thread computes too, so one worker fewer than the cores.
        const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
        const std::size_t computers = std::max<std::size_t>(2, cores);
        BlockWorkers workers(computers - 1);
        long consumed = 0;
        TMM.CancelRequested = false;

        auto start = [&](Batch& batch) {
            // Chunks several times the threads, so that a slow chunk does not hold the block.
            const std::size_t n = batch.records.Size();
            const std::size_t chunks = std::min(n, computers * kChunksPerWorker);
            if (batch.slices.size() < chunks)
                batch.slices.resize(chunks);
            batch.errors.assign(chunks, nullptr);
            batch.chunks = chunks;
            workers.Start(chunks, [&batch, &context, n, chunks](std::size_t chunk) {
                try {
                    batch.slices[chunk].Clear();
                    ComputeSlice(batch.records, n * chunk / chunks, n * (chunk + 1) / chunks,
                                 context, batch.slices[chunk]);
                } catch (...) {
                    batch.errors[chunk] = std::current_exception();
                }
            });
        };
        // A failure reading a block comes after the rows of the blocks before it, as it would
        // have in a one-by-one load.
        std::exception_ptr readFailure;
        auto readAhead = [&](RecordBlock& block) {
            try {
                readBlock(block, blockSize);
            } catch (...) {
                block.Clear();
                readFailure = std::current_exception();
            }
        };

        readBlock(batches[0].records, blockSize);
        if (batches[0].records.Size() > 0) {
            start(batches[0]);
            readAhead(batches[1].records);
        }
        for (std::size_t current = 0; batches[current].records.Size() > 0; current ^= 1) {
            Batch& batch = batches[current];
            Batch& following = batches[current ^ 1];
            workers.Help();
            workers.Wait();

            for (const std::exception_ptr& error : batch.errors) {
                if (!error)
                    continue;
                try {
                    std::rethrow_exception(error);
                } catch (const GatheredFaults::Fatal& fatal) {
                    fatalExit = fatal.exitCode;
                    return;
                }
            }
            faults.Flush(ui);
            const bool more = following.records.Size() > 0;
            if (more)
                start(following);

            // Append in record order until the row limit or a cancel.
            bool stopped = false;
            // A failure here drops the block computed ahead, and its faults, as a stop does.
            try {
                for (std::size_t c = 0; c < batch.chunks && !stopped; ++c) {
                    const RowSlice& slice = batch.slices[c];
                    std::size_t taken = 0;
                    for (const RowSlice::Row& row : slice.rows) {
                        if ((rowret != 0 && rows >= rowret) || TMM.CancelRequested) {
                            stopped = true;
                            break;
                        }
                        if (row.verdict.kept) {
                            grid.AppendRow(
                                std::string_view(slice.text).substr(row.offset, row.length));
                            ++rows;
                            (row.verdict.gcvs ? seenGcvs : seenOther) = true;
                        }
                        ++taken;
                        ++consumed;
                        if (consumed % 10 == 0) {
                            ui.Step(static_cast<int>(consumed));
                            if (ui.Pump())
                                TMM.CancelRequested = true;
                        }
                    }
                    if (taken == slice.rows.size()) {
                        for (std::size_t col = 0; col <= kGridCols; ++col)
                            rowWidths[col] = std::max(rowWidths[col], slice.widths[col]);
                    } else {
                        for (std::size_t i = 0; i < taken; ++i) {
                            const RowSlice::Row& row = slice.rows[i];
                            if (row.verdict.kept)
                                WidenCellWidths(
                                    std::string_view(slice.text).substr(row.offset, row.length),
                                    rowWidths);
                        }
                    }
                }
            } catch (...) {
                if (more) {
                    workers.Wait();
                    faults.Discard();
                }
                throw;
            }
            // Past the limit or cancelled, the block computed ahead is dropped with its faults,
            // and so is a failure reading the one after.
            if (stopped || (rowret != 0 && rows >= rowret) || TMM.CancelRequested) {
                if (more) {
                    workers.Wait();
                    faults.Discard();
                }
                break;
            }
            if (!more) {
                if (readFailure)
                    std::rethrow_exception(readFailure);
                break;
            }
            // This block's rows are appended, so its records make room for the block after
            // the one being computed.
            readAhead(batch.records);
        }
        load.cancelled = TMM.CancelRequested;
        widthsMeasured = true;
    });
    faults.Flush(ui);
    if (fatalExit >= 0)
        services::EndProcess(fatalExit);

    TMM.status.lblMisc = std::to_string(load.planMark ? load.planCount : marks.Count()) +
                         " Object(s) In Your Plan";
    TMM.QueryRunning = false;
    if (rows == 0)
        ui.ShowMessage(NoObjectsText, NoObjectsTitle, "I");
    TMM.status.lblNOM = std::to_string(rows) + " Objects";
    load.allGcvs = seenGcvs && !seenOther;
    ui.Busy(services::BusyKind::Working);
    if (rows > 0) {
        FormatOptions format;
        format.speed1 = prefs.speed1;
        format.autosizespread = prefs.autosizespread;
        format.sort = {prefs.sort1, prefs.sort2, prefs.sort3};
        format.descending = {prefs.Des1 == "D", prefs.Des2 == "D", prefs.Des3 == "D"};
        format.zerosup = prefs.zerosup;
        format.targetSet = TMM.target.TargetingOn;
        format.allGcvs = load.allGcvs;
        format.rowWidths = widthsMeasured ? &rowWidths : nullptr;
        FormatSpreadsheet(grid, TMM.CurrTab, true, format);
    }
    ui.EndBusy();
    grid.SetReDraw(true);
}

} // namespace spread
