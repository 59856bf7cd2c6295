#include "logbook/OalExchange.h"

#include "data/ObjectFilter.h"
#include "logbook/Equipment.h"
#include "services/Fault.h"
#include "services/Vb.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QTimeZone>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <cmath>
#include <map>
#include <set>

namespace logbook {

namespace vb = services::vb;

namespace {

constexpr const char* XsiNamespace = "http://www.w3.org/2001/XMLSchema-instance";
constexpr const char* ExportLocation = "ExportOal";

QString Q(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string Folded(std::string_view text)
{
    return Q(vb::Trim(text)).toCaseFolded().toStdString();
}

const std::optional<std::string>* Find(const ImportRow& row, std::string_view column)
{
    for (const auto& [name, value] : row)
        if (vb::SameText(name, column))
            return &value;
    return nullptr;
}

std::string Str(const ImportRow& row, std::string_view column)
{
    const auto* value = Find(row, column);
    return value && *value ? **value : std::string();
}

ImportRow ReadRow(data::Recordset& rs)
{
    ImportRow row;
    for (int i = 0; i < rs.FieldCount(); ++i) {
        data::Field field = rs.Fields(i);
        row.emplace_back(rs.FieldName(i),
                         field.IsNull() ? std::nullopt : std::optional<std::string>(field.Value()));
    }
    return row;
}

QJsonObject ToJson(const ImportRow& row, std::initializer_list<const char*> leftOut)
{
    QJsonObject object;
    for (const auto& [name, value] : row) {
        bool keep = true;
        for (const char* column : leftOut)
            keep = keep && !vb::SameText(name, column);
        if (keep)
            object.insert(Q(name), value ? QJsonValue(Q(*value)) : QJsonValue());
    }
    return object;
}

ImportRow FromJson(const QJsonObject& object)
{
    ImportRow row;
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QJsonValue value = it.value();
        if (value.isNull())
            row.emplace_back(it.key().toStdString(), std::nullopt);
        else if (value.isString())
            row.emplace_back(it.key().toStdString(), value.toString().toStdString());
        else if (value.isDouble())
            row.emplace_back(it.key().toStdString(),
                             QString::number(value.toDouble(), 'g', 17).toStdString());
        else
            throw std::runtime_error("the value of " + it.key().toStdString() + " is not a text");
    }
    return row;
}

// Text that XML 1.0 can carry: control characters other than tab and line ends left out.
QString XmlText(std::string_view text)
{
    QString out = Q(text);
    out.removeIf([](QChar c) {
        return (c.unicode() < 0x20 && c != '\t' && c != '\n' && c != '\r') ||
               c.unicode() == 0xfffe || c.unicode() == 0xffff;
    });
    return out;
}

// "+hh:mm" or "-hh:mm" of an offset from Universal Time in minutes.
QString OffsetText(int minutes)
{
    const int a = std::abs(minutes);
    return QString("%1%2:%3")
        .arg(minutes < 0 ? '-' : '+')
        .arg(a / 60, 2, 10, QChar('0'))
        .arg(a % 60, 2, 10, QChar('0'));
}

// A time zone in hours west of Greenwich as minutes east of it.
int ZoneMinutes(double hoursWest)
{
    return static_cast<int>(std::lround(-hoursWest * 60));
}

// The target kind of an object type code; objects of no deep-sky kind are uncategorised.
const char* TargetType(std::string_view objectType)
{
    static const std::map<std::string, const char*> types{
        {"gx", "oal:deepSkyGX"},    {"gxpec", "oal:deepSkyGX"}, {"galxy", "oal:deepSkyGX"},
        {"gx+dn", "oal:deepSkyGX"}, {"gxact", "oal:deepSkyQS"}, {"quasr", "oal:deepSkyQS"},
        {"gxcl", "oal:deepSkyCG"},  {"galcl", "oal:deepSkyCG"}, {"oc", "oal:deepSkyOC"},
        {"c+n", "oal:deepSkyOC"},   {"opncl", "oal:deepSkyOC"}, {"lmcoc", "oal:deepSkyOC"},
        {"smcoc", "oal:deepSkyOC"}, {"cl+nb", "oal:deepSkyOC"}, {"lmccn", "oal:deepSkyOC"},
        {"smccn", "oal:deepSkyOC"}, {"g+c+n", "oal:deepSkyOC"}, {"gb", "oal:deepSkyGC"},
        {"glocl", "oal:deepSkyGC"}, {"lmcgc", "oal:deepSkyGC"}, {"smcgc", "oal:deepSkyGC"},
        {"nb", "oal:deepSkyGN"},    {"rfnb", "oal:deepSkyGN"},  {"hii", "oal:deepSkyGN"},
        {"brtnb", "oal:deepSkyGN"}, {"snrem", "oal:deepSkyGN"}, {"lmcdn", "oal:deepSkyGN"},
        {"smcdn", "oal:deepSkyGN"}, {"dknb", "oal:deepSkyDN"},  {"drknb", "oal:deepSkyDN"},
        {"pl", "oal:deepSkyPN"},    {"plnnb", "oal:deepSkyPN"}, {"dblst", "oal:deepSkyDS"},
        {"d*", "oal:deepSkyDS"},    {"d*?", "oal:deepSkyDS"},   {"**", "oal:deepSkyDS"},
        {"2star", "oal:deepSkyDS"}, {"ast", "oal:deepSkyAS"},   {"aster", "oal:deepSkyAS"},
    };
    const auto found = types.find(Folded(objectType));
    return found == types.end() ? "oal:deepSkyNA" : found->second;
}

struct Site
{
    std::string id, name;
    double latitude = 0, longitude = 0; // degrees, east positive
    int zone = 0;                       // minutes east of Greenwich
};

struct Target
{
    std::string id, name, alias, datasource, constellation;
    const char* type = "oal:deepSkyNA";
    std::optional<double> ra, dec; // degrees
};

struct Scope
{
    std::string id, model;
    double aperture = 0, focalLength = 0; // millimetres
};

void Simple(QXmlStreamWriter& xml, const char* name, const QString& text)
{
    xml.writeTextElement(name, text);
}

void Angle(QXmlStreamWriter& xml, const char* name, double degrees)
{
    xml.writeStartElement(name);
    xml.writeAttribute("unit", "deg");
    xml.writeCharacters(QString::number(degrees, 'g', 12));
    xml.writeEndElement();
}

// The sites of the locations named, from ObservingSites or else the settings' place.
std::map<std::string, Site> LoadSites(LogContext& ctx, const std::vector<ImportRow>& entries)
{
    std::map<std::string, ImportRow> stored;
    auto rs = ctx.logbook->OpenRecordset("Select * from ObservingSites", data::Snapshot);
    for (; !rs.Eof(); rs.MoveNext()) {
        ImportRow row = ReadRow(rs);
        stored.emplace(Folded(Str(row, "ProfileName")), std::move(row));
    }
    std::map<std::string, Site> sites;
    for (const ImportRow& entry : entries) {
        const std::string location = Str(entry, "LocationObserved");
        const std::string key = Folded(location);
        if (key.empty() || sites.count(key))
            continue;
        Site site{"site_" + std::to_string(sites.size() + 1), vb::Trim(location)};
        site.latitude = ctx.prefs.Plat;
        site.longitude = -ctx.prefs.PLon;
        site.zone = ZoneMinutes(ctx.prefs.PTz);
        if (auto found = stored.find(key); found != stored.end()) {
            const ImportRow& row = found->second;
            site.latitude = vb::Val(Str(row, "Latitude"));
            const double longitude = std::fabs(vb::Val(Str(row, "Longitude")));
            const std::string side = vb::UCase(vb::Trim(Str(row, "EastWest")));
            // Without a side the longitude reads as the settings' does, west positive.
            site.longitude = side.starts_with("E")   ? longitude
                             : side.starts_with("W") ? -longitude
                                                     : -vb::Val(Str(row, "Longitude"));
            if (Find(row, "TimeZone") && *Find(row, "TimeZone"))
                site.zone = ZoneMinutes(vb::Val(Str(row, "TimeZone")));
        }
        sites.emplace(key, std::move(site));
    }
    return sites;
}

std::string ObjectKeyText(const ImportRow& entry)
{
    return Folded(Str(entry, "ObjectID")) + '\t' + Folded(Str(entry, "Catalog"));
}

std::map<std::string, Target> LoadTargets(LogContext& ctx, const std::vector<ImportRow>& entries)
{
    data::FilterLookups lookups;
    if (ctx.objectDb)
        lookups = data::LoadFilterLookups(*ctx.objectDb);
    std::map<std::string, Target> targets;
    for (const ImportRow& entry : entries) {
        const std::string key = ObjectKeyText(entry);
        if (targets.count(key))
            continue;
        const std::string id = Str(entry, "ObjectID"), catalog = Str(entry, "Catalog");
        Target target{"target_" + std::to_string(targets.size() + 1), id};
        target.datasource = data::GetCatalogName(lookups, catalog);
        if (ctx.objectDb) {
            auto rs = ctx.objectDb->OpenRecordset("Select * From SelvaneTable Where ObjectID = '" +
                                                      vb::QuoteForSql(id) + "' and Catalog = '" +
                                                      vb::QuoteForSql(catalog) + "'",
                                                  data::Snapshot);
            if (!rs.Eof()) {
                target.alias = vb::Trim(rs.Fields("OtherID").Text());
                target.constellation = vb::Trim(rs.Fields("constellation").Text());
                target.type = TargetType(rs.Fields("ObjectType").Text());
                if (!rs.Fields("RAhours").IsNull()) {
                    target.ra =
                        (rs.Fields("RAhours").Double() + rs.Fields("RAminutes").Double() / 60) * 15;
                    const double degrees = rs.Fields("DeclinationDegrees").Double();
                    const double minutes = rs.Fields("DeclinationMinutes").Double();
                    const double size = std::fabs(degrees) + std::fabs(minutes) / 60;
                    target.dec = degrees < 0 || minutes < 0 ? -size : size;
                }
            }
        }
        targets.emplace(key, std::move(target));
    }
    return targets;
}

// The scopes of scope.dat that give an aperture and an F-ratio, by folded name.
std::map<std::string, Scope> LoadScopes(LogContext& ctx)
{
    std::map<std::string, Scope> scopes;
    if (!std::filesystem::exists(ctx.dir.File(EquipmentFileName(EquipmentKind::Scope))))
        return scopes;
    for (const std::string& record : ReadEquipmentFile(ctx.dir, EquipmentKind::Scope)) {
        const ScopeBoxes boxes = SplitScopeRecord(record);
        const double aperture = vb::Val(vb::Trim(boxes.aperture));
        const double ratio = vb::Val(vb::Trim(boxes.fratio));
        const std::string name = vb::Trim(boxes.name);
        if (aperture <= 0 || ratio <= 0 || name.empty() || scopes.count(Folded(name)))
            continue;
        scopes.emplace(Folded(name), Scope{"scope_" + std::to_string(scopes.size() + 1), name,
                                           aperture, aperture * ratio});
    }
    return scopes;
}

std::optional<QDate> EntryDate(std::string_view text, const vb::Regional& regional)
{
    const QDate iso = QDate::fromString(Q(vb::Trim(text)), Qt::ISODate);
    return iso.isValid() ? std::optional<QDate>(iso) : vb::ParseDate(text, regional);
}

std::vector<std::string> SplitStoredLines(const std::string& text)
{
    std::vector<std::string> lines;
    for (const QString& line : Q(text).split(QChar('\r')))
        if (!line.trimmed().isEmpty())
            lines.push_back(line.trimmed().toStdString());
    return lines;
}

} // namespace

int ExportOal(LogContext& ctx, const std::filesystem::path& file, const std::string& sql)
{
    // The query chooses the entries and their order; each is written whole, whatever columns
    // the query gives.
    std::vector<ImportRow> entries;
    {
        auto rs = ctx.logbook->OpenRecordset("Select * From Logbook Order By ObservationNumber",
                                             data::Snapshot);
        for (; !rs.Eof(); rs.MoveNext())
            entries.push_back(ReadRow(rs));
    }
    if (!sql.empty()) {
        std::map<long long, std::size_t> byNumber;
        for (std::size_t i = 0; i < entries.size(); ++i)
            byNumber.emplace(std::atoll(Str(entries[i], "ObservationNumber").c_str()), i);
        std::vector<ImportRow> chosen;
        std::set<long long> seen;
        auto rs = ctx.logbook->OpenRecordset(sql, data::Snapshot);
        if (!rs.HasField("ObservationNumber"))
            throw services::Fault("The query does not give the column ObservationNumber.",
                                  ExportLocation);
        for (data::Field number = rs.Fields("ObservationNumber"); !rs.Eof(); rs.MoveNext())
            if (auto found = byNumber.find(number.Long());
                found != byNumber.end() && seen.insert(number.Long()).second)
                chosen.push_back(entries[found->second]);
        entries = std::move(chosen);
    }
    std::map<long long, ImportRow> ccd;
    std::map<long long, std::vector<ImportRow>> images;
    {
        auto rs = ctx.logbook->OpenRecordset("Select * From CCDLog", data::Snapshot);
        for (; !rs.Eof(); rs.MoveNext())
            ccd.emplace(rs.Fields("ObservationNumber").Long(), ReadRow(rs));
        auto img =
            ctx.logbook->OpenRecordset("Select * From ImageLog Order By Sequence", data::Snapshot);
        for (; !img.Eof(); img.MoveNext())
            images[img.Fields("ObservationNumber").Long()].push_back(ReadRow(img));
    }
    const auto sites = LoadSites(ctx, entries);
    const auto targets = LoadTargets(ctx, entries);
    const auto scopes = LoadScopes(ctx);
    const vb::Regional regional = data::RegionalOf(ctx.prefs);
    const bool universal = vb::UCase(vb::Trim(ctx.prefs.tLogTime)).starts_with("U");

    QSaveFile out(QString::fromStdString(file.string()));
    if (!out.open(QIODevice::WriteOnly))
        throw services::Fault(file.string() + ": " + out.errorString().toStdString(),
                              ExportLocation);
    QXmlStreamWriter xml(&out);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeNamespace(OalNamespace, "oal");
    xml.writeNamespace(XsiNamespace, "xsi");
    xml.writeStartElement(OalNamespace, "observations");
    xml.writeAttribute("version", "2.1");
    xml.writeAttribute(XsiNamespace, "schemaLocation", QString(OalNamespace) + " oal21.xsd");

    // The observer: the last word of the name is the surname.
    const QString observer = Q(vb::Trim(ctx.prefs.ObserverName));
    const qsizetype blank = observer.lastIndexOf(' ');
    xml.writeStartElement("observers");
    xml.writeStartElement("observer");
    xml.writeAttribute("id", "observer_1");
    Simple(xml, "name", blank < 0 ? QString() : observer.left(blank).trimmed());
    Simple(xml, "surname", blank < 0 ? observer : observer.mid(blank + 1));
    xml.writeEndElement();
    xml.writeEndElement();

    xml.writeStartElement("sites");
    for (const auto& [key, site] : sites) {
        xml.writeStartElement("site");
        xml.writeAttribute("id", Q(site.id));
        Simple(xml, "name", XmlText(site.name));
        Angle(xml, "longitude", site.longitude);
        Angle(xml, "latitude", site.latitude);
        Simple(xml, "timezone", QString::number(site.zone));
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEmptyElement("sessions");

    xml.writeStartElement("targets");
    for (const auto& [key, target] : targets) {
        xml.writeStartElement("target");
        xml.writeAttribute("id", Q(target.id));
        xml.writeAttribute(XsiNamespace, "type", target.type);
        if (vb::Trim(target.datasource).empty())
            Simple(xml, "observer", "observer_1");
        else
            Simple(xml, "datasource", XmlText(target.datasource));
        Simple(xml, "name", XmlText(target.name));
        if (!target.alias.empty())
            Simple(xml, "alias", XmlText(target.alias));
        if (target.ra && target.dec) {
            xml.writeStartElement("position");
            Angle(xml, "ra", std::fmod(std::fmod(*target.ra, 360) + 360, 360));
            Angle(xml, "dec", *target.dec);
            xml.writeEndElement();
        }
        if (!target.constellation.empty())
            Simple(xml, "constellation", XmlText(target.constellation));
        xml.writeEndElement();
    }
    xml.writeEndElement();

    xml.writeStartElement("scopes");
    std::map<std::string, const Scope*> usedScopes;
    for (const ImportRow& entry : entries)
        if (auto found = scopes.find(Folded(Str(entry, "EquipmentUsed"))); found != scopes.end())
            usedScopes.emplace(found->second.id, &found->second);
    for (const auto& [id, scope] : usedScopes) {
        xml.writeStartElement("scope");
        xml.writeAttribute("id", Q(scope->id));
        xml.writeAttribute(XsiNamespace, "type", "oal:scopeType");
        Simple(xml, "model", XmlText(scope->model));
        Simple(xml, "aperture", QString::number(scope->aperture, 'g', 12));
        Simple(xml, "focalLength", QString::number(scope->focalLength, 'g', 12));
        xml.writeEndElement();
    }
    xml.writeEndElement();
    for (const char* empty : {"eyepieces", "lenses", "filters", "imagers"})
        xml.writeEmptyElement(empty);

    int written = 0;
    for (const ImportRow& entry : entries) {
        const std::string number = Str(entry, "ObservationNumber");
        const auto date = EntryDate(Str(entry, "DateObserved"), regional);
        if (!date) {
            ctx.ui.ShowMessage("Observation " + number + " was not exported: its date \"" +
                                   Str(entry, "DateObserved") + "\" is not a date.",
                               OalTitle, "E");
            continue;
        }
        const QTime time = vb::ParseTime(Str(entry, "TimeObserved")).value_or(QTime(0, 0));
        const std::string location = Folded(Str(entry, "LocationObserved"));
        const auto site = sites.find(location);
        const int zone = site != sites.end() ? site->second.zone : ZoneMinutes(ctx.prefs.PTz);

        xml.writeStartElement("observation");
        xml.writeAttribute("id", Q("obs_" + number));
        QJsonObject stored;
        stored.insert("Logbook", ToJson(entry, {"ObservationNumber", "DataRec"}));
        const long long n = std::atoll(number.c_str());
        if (auto c = ccd.find(n); c != ccd.end())
            stored.insert("CCDLog", ToJson(c->second, {"ObservationNumber"}));
        QJsonArray imageRows;
        for (const ImportRow& image : images[n])
            imageRows.append(ToJson(image, {"Sequence", "ObservationNumber"}));
        stored.insert("ImageLog", imageRows);
        xml.writeProcessingInstruction(
            OalInstruction, QString::fromUtf8(QJsonDocument(stored).toJson(QJsonDocument::Compact))
                                .replace("?>", "?\\u003e"));

        Simple(xml, "observer", "observer_1");
        if (site != sites.end())
            Simple(xml, "site", Q(site->second.id));
        Simple(xml, "target", Q(targets.at(ObjectKeyText(entry)).id));
        Simple(xml, "begin",
               QDateTime(*date, time).toString("yyyy-MM-ddTHH:mm:ss") +
                   (universal ? QString("Z") : OffsetText(zone)));
        const auto& seeing = SeeingList();
        for (std::size_t i = 0; i < seeing.size(); ++i)
            if (vb::SameText(vb::Trim(Str(entry, "Seeing")), seeing[i]))
                Simple(xml, "seeing", QString::number(i + 1));
        std::vector<std::string> accessories;
        const std::string equipment = vb::Trim(Str(entry, "EquipmentUsed"));
        const auto scope = scopes.find(Folded(equipment));
        if (scope != scopes.end())
            Simple(xml, "scope", Q(scope->second.id));
        else if (!equipment.empty())
            accessories.push_back(equipment);
        for (const std::string& line : SplitStoredLines(Str(entry, "OtherEquipment")))
            accessories.push_back(line);
        if (!accessories.empty()) {
            std::string joined;
            for (const std::string& item : accessories)
                joined += (joined.empty() ? "" : "; ") + item;
            Simple(xml, "accessories", XmlText(joined));
        }
        xml.writeStartElement("result");
        xml.writeAttribute(XsiNamespace, "type", "oal:findingsDeepSkyType");
        xml.writeAttribute("lang", "en");
        Simple(xml, "description", XmlText(vb::Trim(RichPlainText(Str(entry, "ObservationText")))));
        Simple(xml, "rating", vb::Val(Str(entry, "SeenFlag")) == 0 ? "7" : "99");
        xml.writeEndElement();
        for (const ImportRow& image : images[n])
            if (!vb::Trim(Str(image, "ImagePath")).empty())
                Simple(xml, "image", XmlText(Str(image, "ImagePath")));
        xml.writeEndElement();
        ++written;
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    if (xml.hasError() || !out.commit())
        throw services::Fault(file.string() + ": " + out.errorString().toStdString(),
                              ExportLocation);
    return written;
}

// ---------------------------------------------------------------------------------------------
// Reading

namespace {

// An element with its children; the text of a leaf, the instruction before its first child.
struct Node
{
    QString ns, name;
    QXmlStreamAttributes attributes;
    QString text;
    std::optional<QString> instruction;
    std::vector<Node> children;

    const Node* Child(const char* childName) const
    {
        for (const Node& child : children)
            if (child.name == QLatin1String(childName))
                return &child;
        return nullptr;
    }
    std::string Text(const char* childName) const
    {
        const Node* child = Child(childName);
        return child ? child->text.trimmed().toStdString() : std::string();
    }
    std::vector<std::string> Texts(const char* childName) const
    {
        std::vector<std::string> out;
        for (const Node& child : children)
            if (child.name == QLatin1String(childName))
                out.push_back(child.text.trimmed().toStdString());
        return out;
    }
    std::string Attribute(const char* attributeName) const
    {
        return attributes.value(attributeName).toString().toStdString();
    }
};

void ReadNode(QXmlStreamReader& xml, Node& node)
{
    node.ns = xml.namespaceUri().toString();
    node.name = xml.name().toString();
    node.attributes = xml.attributes();
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            node.children.emplace_back();
            ReadNode(xml, node.children.back());
            break;
        case QXmlStreamReader::EndElement:
            return;
        case QXmlStreamReader::Characters:
            node.text += xml.text();
            break;
        case QXmlStreamReader::ProcessingInstruction:
            if (node.children.empty() && !node.instruction &&
                xml.processingInstructionTarget() == QLatin1String(OalInstruction))
                node.instruction = xml.processingInstructionData().toString();
            break;
        default:
            break;
        }
    }
}

struct FileSite
{
    std::string name;
    std::optional<double> latitude, longitude; // degrees, east positive
    std::optional<int> zone;                   // minutes east of Greenwich
};

struct FileTarget
{
    std::string name, datasource;
    std::vector<std::string> aliases;
};

// The observation's entry from its instruction.
ImportEntry FromInstruction(const QString& data)
{
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(data.toUtf8(), &error);
    if (doc.isNull() || !doc.isObject() || !doc.object().value("Logbook").isObject())
        throw std::runtime_error("its " + std::string(OalInstruction) + " record is damaged");
    const QJsonObject stored = doc.object();
    ImportEntry entry;
    entry.logbook = FromJson(stored.value("Logbook").toObject());
    if (stored.value("CCDLog").isObject())
        entry.ccd = FromJson(stored.value("CCDLog").toObject());
    for (const QJsonValue& image : stored.value("ImageLog").toArray()) {
        if (!image.isObject())
            throw std::runtime_error("its " + std::string(OalInstruction) + " record is damaged");
        entry.images.push_back(FromJson(image.toObject()));
    }
    return entry;
}

class ObjectFinder
{
public:
    explicit ObjectFinder(data::Database* objectDb) : db_(objectDb)
    {
        if (db_)
            lookups_ = data::LoadFilterLookups(*db_);
    }

    // The object's ObjectID and catalogue id: the name, then each alias, as an ObjectID, then
    // as an OtherID, in the datasource's catalogue when it names one. Not found: the name
    // upper-cased in that catalogue.
    std::pair<std::string, std::string> Find(const FileTarget& target)
    {
        const std::string catalog = data::GetCatalogID(lookups_, target.datasource);
        std::vector<std::string> names{target.name};
        names.insert(names.end(), target.aliases.begin(), target.aliases.end());
        if (db_) {
            for (const char* column : {"ObjectID", "OtherID"})
                for (const std::string& name : names) {
                    if (vb::Trim(name).empty())
                        continue;
                    std::string sql = "Select ObjectID, Catalog From SelvaneTable Where " +
                                      std::string(column) + " = '" +
                                      vb::QuoteForSql(vb::Trim(name)) + "'";
                    if (!catalog.empty())
                        sql += " and Catalog = '" + vb::QuoteForSql(catalog) + "'";
                    auto rs = db_->OpenRecordset(sql + " Order By ID", data::Snapshot);
                    if (!rs.Eof())
                        return {rs.Fields(0).Value(), rs.Fields(1).Value()};
                }
        }
        return {vb::UCase(vb::Trim(target.name)), catalog};
    }

private:
    data::Database* db_;
    data::FilterLookups lookups_;
};

} // namespace

OalDocument ReadOal(LogContext& ctx, const std::filesystem::path& file)
{
    OalDocument doc;
    const std::string shown = file.string();
    QFile in(QString::fromStdString(shown));
    if (!in.open(QIODevice::ReadOnly)) {
        doc.notALog = "The file " + shown + " cannot be read: " + in.errorString().toStdString();
        return doc;
    }
    QXmlStreamReader xml(&in);
    Node root;
    while (!xml.atEnd() && !xml.hasError())
        if (xml.readNext() == QXmlStreamReader::StartElement) {
            ReadNode(xml, root);
            break;
        }
    if (xml.hasError() || root.ns != QLatin1String(OalNamespace) ||
        root.name != QLatin1String("observations") ||
        !root.attributes.value("version").startsWith(QLatin1String("2."))) {
        doc.notALog = "The file " + shown + " is not an Open Astronomy Log (version 2.0 or 2.1).";
        return doc;
    }

    std::map<std::string, FileSite> sites;
    std::map<std::string, FileTarget> targets;
    std::map<std::string, std::string> scopes;
    auto each = [&](const char* group, const char* item, auto&& visit) {
        if (const Node* g = root.Child(group))
            for (const Node& n : g->children)
                if (n.name == QLatin1String(item))
                    visit(n);
    };
    auto number = [](const Node* n) {
        bool ok = false;
        const double value = n ? n->text.trimmed().toDouble(&ok) : 0;
        return ok ? std::optional<double>(value) : std::nullopt;
    };
    each("sites", "site", [&](const Node& n) {
        FileSite site{n.Text("name")};
        site.latitude = number(n.Child("latitude"));
        site.longitude = number(n.Child("longitude"));
        if (const auto zone = number(n.Child("timezone")))
            site.zone = static_cast<int>(std::lround(*zone));
        sites[n.Attribute("id")] = site;
    });
    each("targets", "target", [&](const Node& n) {
        targets[n.Attribute("id")] =
            FileTarget{n.Text("name"), n.Text("datasource"), n.Texts("alias")};
    });
    each("scopes", "scope", [&](const Node& n) { scopes[n.Attribute("id")] = n.Text("model"); });

    ObjectFinder finder(ctx.objectDb);
    const bool universal = vb::UCase(vb::Trim(ctx.prefs.tLogTime)).starts_with("U");
    std::set<std::string> sitesAdded;
    for (const Node& n : root.children) {
        if (n.name != QLatin1String("observation"))
            continue;
        const std::string id = n.Attribute("id");
        try {
            if (n.instruction) {
                doc.batch.entries.push_back(FromInstruction(*n.instruction));
                continue;
            }
            const auto target = targets.find(n.Text("target"));
            if (target == targets.end())
                throw std::runtime_error("its target \"" + n.Text("target") +
                                         "\" is not in the file");
            // An XML date and time: the date, "T", the time, an optional offset.
            const QString beginText = Q(n.Text("begin"));
            QDateTime begin = QDateTime::fromString(beginText, Qt::ISODate);
            if (!begin.isValid() || beginText.size() < 19 || beginText[10] != QChar('T'))
                throw std::runtime_error("its begin \"" + n.Text("begin") +
                                         "\" is not a date and time");
            const auto site = sites.find(n.Text("site"));
            const FileSite* place = site == sites.end() ? nullptr : &site->second;
            // A time without an offset is taken as written in the logbook's own frame.
            if (begin.timeSpec() != Qt::LocalTime)
                begin = universal ? begin.toUTC()
                                  : begin.toOffsetFromUtc(60 * (place && place->zone
                                                                    ? *place->zone
                                                                    : ZoneMinutes(ctx.prefs.PTz)));

            const auto [objectId, catalog] = finder.Find(target->second);
            std::string text;
            std::optional<std::string> rating;
            for (const Node& result : n.children)
                if (result.name == QLatin1String("result")) {
                    text = vb::Trim(result.Text("description"));
                    if (result.Child("rating"))
                        rating = result.Text("rating");
                    break;
                }
            const std::string shortText =
                Q(text).section(QChar('\n'), 0, 0).trimmed().left(50).toStdString();
            std::string equipment;
            std::vector<std::string> other;
            if (auto scope = scopes.find(n.Text("scope")); scope != scopes.end())
                equipment = scope->second;
            for (const QString& part : Q(n.Text("accessories")).split(';')) {
                const std::string item = part.trimmed().toStdString();
                if (item.empty())
                    continue;
                if (equipment.empty())
                    equipment = item;
                else
                    other.push_back(item);
            }
            std::string otherText;
            for (const std::string& item : other)
                otherText += item + "\r\n";
            const int seeing = std::atoi(n.Text("seeing").c_str());
            auto value = [](const std::string& t) {
                return t.empty() ? std::nullopt : std::optional<std::string>(t);
            };

            ImportEntry entry;
            entry.logbook = {
                {"ObjectID", objectId},
                {"Catalog", catalog},
                {"DateObserved", begin.date().toString("yyyy-MM-dd").toStdString()},
                {"TimeObserved", vb::LongTime(begin.time())},
                {"SeenFlag", rating == "7" ? "0" : "-1"},
                {"LocationObserved", value(place ? vb::Trim(place->name) : std::string())},
                {"Seeing",
                 seeing >= 1 && seeing <= 5 ? value(SeeingList()[seeing - 1]) : std::nullopt},
                {"EquipmentUsed", value(equipment)},
                {"OtherEquipment", value(otherText)},
                {"ShortDescription", value(shortText)},
                {"ObservationText",
                 RichIsBlank(text) ? std::nullopt : std::optional(RichToHtml(text))},
            };
            for (const std::string& path : n.Texts("image"))
                if (!path.empty())
                    entry.images.push_back({{"ImagePath", path}});
            doc.batch.entries.push_back(std::move(entry));
            if (place && !vb::Trim(place->name).empty() && place->latitude && place->longitude &&
                sitesAdded.insert(Folded(place->name)).second) {
                ImportRow row{
                    {"ProfileName", vb::Trim(place->name)},
                    {"Latitude", QString::number(*place->latitude, 'g', 12).toStdString()},
                    {"Longitude",
                     QString::number(std::fabs(*place->longitude), 'g', 12).toStdString()},
                    {"EastWest", *place->longitude < 0 ? "W" : "E"}};
                if (place->zone)
                    row.emplace_back("TimeZone",
                                     QString::number(-*place->zone / 60.0, 'g', 12).toStdString());
                doc.batch.sites.push_back(std::move(row));
            }
        } catch (const services::Fault&) {
            throw;
        } catch (const std::runtime_error& e) {
            doc.skipped.push_back("Observation " +
                                  (id.empty() ? std::string("without an id") : id) + " of " +
                                  shown + " was skipped: " + e.what() + ".");
        }
    }
    return doc;
}

std::optional<ImportResult> ImportOal(LogContext& ctx, const std::filesystem::path& file,
                                      const std::string& defaultType)
{
    const OalDocument doc = ReadOal(ctx, file);
    if (!doc.notALog.empty()) {
        ctx.ui.ShowMessage(doc.notALog, OalTitle, "E");
        return std::nullopt;
    }
    for (const std::string& message : doc.skipped)
        ctx.ui.ShowMessage(message, OalTitle, "E");
    return ImportEntries(ctx, doc.batch, defaultType);
}

} // namespace logbook
