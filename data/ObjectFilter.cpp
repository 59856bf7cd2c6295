#include "data/ObjectFilter.h"

#include "data/Database.h"
#include "data/Preferences.h"
#include "services/Vb.h"

#include <array>
#include <string>

namespace data {

namespace vb = services::vb;

namespace {

// The names offered by the sort combos, in their order.
// clang-format off
constexpr std::array<const char*, 33> SortNames{
    "<none>", "Altitude", "Azimuth", "Catalog",
    "Constellation", "DeclinationDegrees", "DeclinationMinutes", "SelvaneSup",
    "Description", "Epoch", "GalacticLatitude", "GalacticLongitude",
    "Hobject", "ImageFile", "Magnitude", "Magnitude2",
    "MCode", "MessierNumber", "Mill#", "ObjectID",
    "ObjectSize", "ObjectType", "Observed", "Optimum",
    "OtherID", "PositionAngle", "RAhours", "RAminutes",
    "Rise", "Separation", "Set", "Sky#",
    "Ura#",
};
// clang-format on

struct ComputedColumn
{
    const char* upperName;
    int column;
};
// Sky#, Ura# and Mill# stand in grid columns 28 to 30.
// Deliberate: they sort by 27 to 29, one to the left, as the grid has always sorted them.
constexpr std::array<ComputedColumn, 8> ComputedColumns{{
    {"ALTITUDE", 10},
    {"AZIMUTH", 11},
    {"RISE", 12},
    {"OPTIMUM", 13},
    {"SET", 14},
    {"SKY#", 27},
    {"URA#", 28},
    {"MILL#", 29},
}};

bool EqualsNoCase(std::string_view a, std::string_view b)
{
    return vb::UCase(a) == vb::UCase(b);
}

bool BeginsAll(std::string_view label)
{
    return label.substr(0, 3) == "All";
}

bool IsBlank(std::string_view text)
{
    return vb::Trim(text).empty();
}

// A range box's value in the program's number form.
// Deliberate: a text that is no number is written as 0 (Val), not refused, as before.
std::string Number(std::string_view boxText)
{
    return vb::Format(vb::Val(boxText), "");
}

std::string OrDefault(const std::string& boxText, const char* defaultText)
{
    return boxText.empty() ? std::string(defaultText) : boxText;
}

// A literal between quotes in the SQL: every quote doubled.
std::string Literal(std::string_view text)
{
    return vb::QuoteForSql(text);
}

// The empty choice of a sort combo, in either spelling the combos have used.
bool IsNoSort(const std::string& field)
{
    return field.empty() || field == "* none *" || field == "<none>";
}

} // namespace

FilterLookups LoadFilterLookups(Database& db)
{
    FilterLookups lookups;
    {
        Recordset rs = db.OpenRecordset(
            "Select CatalogName, CatalogDescription From CatalogLookup Order By ID", Snapshot);
        Field name = rs.Fields("CatalogName");
        Field description = rs.Fields("CatalogDescription");
        for (; !rs.Eof(); rs.MoveNext())
            lookups.catalogs.push_back({name.Value(), description.Value()});
    }
    Recordset rs = db.OpenRecordset(
        "Select ObjectType, ObjectTypeDesc From ValidObjectTypes Order By ID", Snapshot);
    Field code = rs.Fields("ObjectType");
    Field description = rs.Fields("ObjectTypeDesc");
    for (; !rs.Eof(); rs.MoveNext())
        lookups.types.push_back({code.Value(), description.Value()});
    return lookups;
}

std::string GetCatalogID(const FilterLookups& lookups, std::string_view description)
{
    for (const CatalogRow& row : lookups.catalogs)
        if (EqualsNoCase(row.CatalogDescription, description))
            return row.CatalogName;
    return {};
}

std::string GetCatalogName(const FilterLookups& lookups, std::string_view catalogName)
{
    for (const CatalogRow& row : lookups.catalogs)
        if (EqualsNoCase(row.CatalogName, catalogName))
            return row.CatalogDescription;
    return {};
}

std::string GetTypeID(const FilterLookups& lookups, std::string_view description)
{
    for (const ObjectTypeRow& row : lookups.types)
        if (EqualsNoCase(row.ObjectTypeDesc, description))
            return row.ObjectType;
    return {};
}

std::optional<DescTag> ParseDescTag(std::string_view tag)
{
    const std::string upper = vb::UCase(tag);
    if (upper == "CAT")
        return DescTag::Catalogs;
    if (upper == "CON")
        return DescTag::Constellations;
    if (upper == "TYP")
        return DescTag::Types;
    return std::nullopt;
}

std::vector<std::string> DecodeDesc(std::string_view label, DescTag tag)
{
    std::string text(label);
    if (!text.empty() && text.back() != ';')
        text += ';';
    const char* all = tag == DescTag::Catalogs         ? "All Catalogs;"
                      : tag == DescTag::Constellations ? "All Constellations;"
                                                       : "All Object Types;";
    std::vector<std::string> list;
    if (text == all)
        return list;
    size_t start = 0;
    for (size_t end = text.find(';'); end != std::string::npos; end = text.find(';', start)) {
        list.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return list;
}

std::optional<int> IsComputedSort(std::string_view name)
{
    const std::string upper = vb::UCase(name);
    for (const ComputedColumn& c : ComputedColumns)
        if (upper == c.upperName)
            return c.column;
    return std::nullopt;
}

std::vector<std::string> SortComboList(int index)
{
    std::vector<std::string> list;
    for (const char* name : SortNames)
        if (index >= 2 || !IsComputedSort(name))
            list.emplace_back(name);
    return list;
}

SortOptions SetSortOptions(const std::array<std::string, 3>& sort,
                           const std::array<std::string, 3>& des)
{
    SortOptions options;
    for (int i = 0; i < 3; ++i) {
        const std::vector<std::string> list = SortComboList(i);
        options.cbosort[i] = list.front();
        for (const std::string& name : list)
            if (name == sort[i]) {
                options.cbosort[i] = name;
                break;
            }
        options.chkD[i] = des[i] == "D";
    }
    return options;
}

std::string BuildOrderBy(const ObjectFilter& filter)
{
    const std::array<const std::string*, 3> fields{&filter.sort1, &filter.sort2, &filter.sort3};
    const std::array<const std::string*, 3> des{&filter.Des1, &filter.Des2, &filter.Des3};
    std::string order = " ORDER BY ";
    for (int level = 0; level < 3; ++level) {
        const std::string& field = *fields[level];
        if (IsNoSort(field) || IsComputedSort(field))
            continue;
        if (level > 0) {
            const std::string sofar = vb::Trim(order);
            // Deliberate: each level already ends in ", ", so the levels are joined by ",  ".
            order += sofar != "ORDER BY" && !sofar.ends_with(',') ? ", " : " ";
        }
        order += field;
        order += *des[level] == "D" ? " Desc, " : " Asc, ";
    }
    order = vb::Trim(order);
    if (order.ends_with(','))
        order.pop_back();
    if (order.ends_with("ORDER BY"))
        order.erase(order.size() - 8);
    if (vb::Trim(order) == "ORDER BY")
        return {};
    return order;
}

SqlSelect BuildSQLSelectString(const ObjectFilter& filter, const FilterLookups& lookups,
                               const BuildLimits& limits)
{
    std::string sql = "Select * From SelvaneTable ";
    bool where = false;

    if (!filter.ObCat.empty() && !BeginsAll(filter.ObCat)) {
        const std::vector<std::string> list = DecodeDesc(filter.ObCat, DescTag::Catalogs);
        for (size_t i = 0; i < list.size(); ++i) {
            sql += i == 0 ? " WHERE (Catalog = '" : " or Catalog = '";
            sql += Literal(GetCatalogID(lookups, list[i])) + "' ";
            where = true;
        }
        if (!list.empty())
            sql += ") and (";
    }

    if (!IsBlank(filter.Obcon) && !BeginsAll(filter.Obcon)) {
        const std::vector<std::string> list = DecodeDesc(filter.Obcon, DescTag::Constellations);
        for (size_t i = 0; i < list.size(); ++i) {
            if (i > 0)
                sql += " or Constellation = '";
            else
                sql += where ? " Constellation = '" : " WHERE (Constellation = '";
            sql += Literal(list[i].substr(0, 3)) + "' ";
            where = true;
        }
        if (!list.empty())
            sql += ") and (";
    }

    if (!IsBlank(filter.Obtod) && !BeginsAll(filter.Obtod)) {
        const std::vector<std::string> list = DecodeDesc(filter.Obtod, DescTag::Types);
        for (size_t i = 0; i < list.size(); ++i) {
            if (i > 0)
                sql += " or ObjectType = '";
            else
                sql += where ? " ObjectType = '" : " WHERE (ObjectType = '";
            sql += Literal(GetTypeID(lookups, list[i])) + "' ";
            where = true;
        }
        if (!list.empty())
            sql += ") ";
    }

    if (sql.ends_with("and ("))
        sql.erase(sql.size() - 5);

    const std::string magL = Number(OrDefault(filter.gMagL, "-1"));
    const std::string magU = Number(OrDefault(filter.gMagU, limits.emptyMagnitudeUpper.c_str()));
    const std::string magL2 = Number(OrDefault(filter.gMagL2, "-1"));
    const std::string magU2 = Number(OrDefault(filter.gMagU2, limits.emptyMagnitudeUpper.c_str()));

    if (filter.PIB == "Y")
        sql += std::string(where ? " and" : " WHERE") + " ((Magnitude >= " + magL +
               " and Magnitude <= " + magU + ") or isnull(Magnitude)) ";
    else
        sql += std::string(where ? " and" : " WHERE") + " Magnitude >= " + magL +
               " and Magnitude <= " + magU + " ";

    if (filter.PIB2 == "Y")
        sql += " and ((Magnitude2 >= " + magL2 + " and Magnitude2 <= " + magU2 +
               ") or isnull(Magnitude2)) ";
    else
        sql += " and Magnitude2 >= " + magL2 + " and Magnitude2 <= " + magU2 + " ";

    if (limits.withRanges) {
        if (!IsBlank(filter.gmagdif))
            sql += " and (abs(Magnitude-Magnitude2) <= " + Number(filter.gmagdif) + ") ";
        if (!IsBlank(filter.gmagdif2))
            sql += " and (abs(Magnitude-Magnitude2) >= " + Number(filter.gmagdif2) + ") ";

        const std::string sizeL = Number(OrDefault(filter.gSizeL, "0"));
        const std::string sizeU = Number(OrDefault(filter.gSizeU, "9999"));
        if (filter.PIB3 == "Y")
            sql += " and ((ObjectSize >= " + sizeL + " and ObjectSize <= " + sizeU +
                   " ) or isnull(ObjectSize)) ";
        else
            sql += " and ObjectSize >= " + sizeL + " and ObjectSize <= " + sizeU + " ";

        // The defaults are compared as typed: "9999.0" is not the default and writes a clause.
        const std::string sepL = OrDefault(filter.gSepL, "0");
        const std::string sepH = OrDefault(filter.gSepH, "9999");
        if (sepH != "9999" || sepL != "0")
            sql +=
                " and Separation >= " + Number(sepL) + " and Separation <= " + Number(sepH) + " ";

        const std::string paL = OrDefault(filter.gPAL, "0");
        const std::string paH = OrDefault(filter.gPAH, "360");
        if (paH != "360" || paL != "0")
            sql += " and PositionAngle >= " + Number(paL) + " and PositionAngle <= " + Number(paH) +
                   " ";

        // The minutes boxes never enter the SQL, and an RA range across 0h (22 to 2) is empty.
        // Deliberate: whole hours and degrees only, as saved filters have always selected.
        sql += " and RAHours >= " + Number(OrDefault(filter.gFRAH, "0")) +
               " and RAHours <= " + Number(OrDefault(filter.gTRAH, "24")) + " ";
        sql += " and DeclinationDegrees >= " + Number(OrDefault(filter.gFDECD, "-90")) +
               " and DeclinationDegrees <= " + Number(OrDefault(filter.gTDECD, "90")) + " ";

        if (!IsBlank(filter.gObjID))
            sql += " and ObjectID Like '" + Literal(vb::Trim(filter.gObjID)) + "' ";
        if (!IsBlank(filter.gOther))
            sql += " and OtherID Like '" + Literal(vb::Trim(filter.gOther)) + "' ";
    }

    SqlSelect select;
    select.OrderBy = BuildOrderBy(filter);
    select.SQL = sql + select.OrderBy;
    return select;
}

SqlSelect WizardSQLSelectString(const ObjectFilter& filter, const FilterLookups& lookups)
{
    BuildLimits wizard;
    wizard.emptyMagnitudeUpper = "99";
    wizard.withRanges = false;
    return BuildSQLSelectString(filter, lookups, wizard);
}

ObjectFilter FilterFromPreferences(const Preferences& p)
{
    ObjectFilter f;
    f.ObCat = p.ObCat.empty() ? "All Catalogs" : p.ObCat;
    f.Obcon = p.Obcon.empty() ? "All Constellations" : p.Obcon;
    f.Obtod = p.Obtod.empty() ? "All Types" : p.Obtod;
    f.gMagL = p.gMagL;
    f.gMagU = p.gMagU;
    f.gMagL2 = p.gMagL2;
    f.gMagU2 = p.gMagU2;
    f.gSizeL = p.gSizeL;
    f.gSizeU = p.gSizeU;
    f.gSepL = p.gSepL;
    f.gSepH = p.gSepH;
    f.gPAL = p.gPAL;
    f.gPAH = p.gPAH;
    f.gFRAH = p.gFRAH;
    f.gTRAH = p.gTRAH;
    f.gFDECD = p.gFDECD;
    f.gTDECD = p.gTDECD;
    f.gFRAM = p.gFRAM;
    f.gTRAM = p.gTRAM;
    f.gFDECM = p.gFDECM;
    f.gTDECM = p.gTDECM;
    f.gmagdif = p.gmagdif;
    f.gmagdif2 = p.gmagdif2;
    f.gObjID = p.gObjID;
    f.gOther = p.gOther;
    f.PIB = p.PIB;
    f.PIB2 = p.PIB2;
    f.PIB3 = p.PIB3;
    const SortOptions sorts = SetSortOptions({p.sort1, p.sort2, p.sort3}, {p.Des1, p.Des2, p.Des3});
    f.sort1 = sorts.cbosort[0];
    f.sort2 = sorts.cbosort[1];
    f.sort3 = sorts.cbosort[2];
    f.Des1 = sorts.chkD[0] ? "D" : "";
    f.Des2 = sorts.chkD[1] ? "D" : "";
    f.Des3 = sorts.chkD[2] ? "D" : "";
    return f;
}

void FilterToPreferences(const ObjectFilter& f, Preferences& p)
{
    p.ObCat = f.ObCat;
    p.Obcon = f.Obcon;
    p.Obtod = f.Obtod;
    p.gMagL = f.gMagL;
    p.gMagU = f.gMagU;
    p.gMagL2 = f.gMagL2;
    p.gMagU2 = f.gMagU2;
    p.gSizeL = f.gSizeL;
    p.gSizeU = f.gSizeU;
    p.gSepL = f.gSepL;
    p.gSepH = f.gSepH;
    p.gPAL = f.gPAL;
    p.gPAH = f.gPAH;
    p.gFRAH = f.gFRAH;
    p.gTRAH = f.gTRAH;
    p.gFDECD = f.gFDECD;
    p.gTDECD = f.gTDECD;
    p.gFRAM = f.gFRAM;
    p.gTRAM = f.gTRAM;
    p.gFDECM = f.gFDECM;
    p.gTDECM = f.gTDECM;
    p.gmagdif = f.gmagdif;
    p.gmagdif2 = f.gmagdif2;
    p.gObjID = f.gObjID;
    p.gOther = f.gOther;
    p.PIB = f.PIB;
    p.PIB2 = f.PIB2;
    p.PIB3 = f.PIB3;
    p.sort1 = f.sort1;
    p.sort2 = f.sort2;
    p.sort3 = f.sort3;
    p.Des1 = f.Des1;
    p.Des2 = f.Des2;
    p.Des3 = f.Des3;
}

void ResetRanges(ObjectFilter& f)
{
    const ObjectFilter defaults = FilterFromPreferences(Preferences{});
    f.gMagL = defaults.gMagL;
    f.gMagU = defaults.gMagU;
    f.gMagL2 = defaults.gMagL2;
    f.gMagU2 = defaults.gMagU2;
    f.gSizeL = defaults.gSizeL;
    f.gSizeU = defaults.gSizeU;
    f.gSepL = defaults.gSepL;
    f.gSepH = defaults.gSepH;
    f.gPAL = defaults.gPAL;
    f.gPAH = defaults.gPAH;
    f.gFRAH = defaults.gFRAH;
    f.gTRAH = defaults.gTRAH;
    f.gFDECD = defaults.gFDECD;
    f.gTDECD = defaults.gTDECD;
    f.gFRAM = defaults.gFRAM;
    f.gTRAM = defaults.gTRAM;
    f.gFDECM = defaults.gFDECM;
    f.gTDECM = defaults.gTDECM;
    f.gmagdif = defaults.gmagdif;
    f.gmagdif2 = defaults.gmagdif2;
    f.gObjID = defaults.gObjID;
    f.gOther = defaults.gOther;
}

std::string SqlCommandLines(const Preferences& prefs, const FilterLookups& lookups)
{
    const SqlSelect select = BuildSQLSelectString(FilterFromPreferences(prefs), lookups);
    return select.SQL + "\n" + select.OrderBy + "\n";
}

// ---------------------------------------------------------------------------------------------
// Fixed lists

FixedList ShowMessierList()
{
    return {"All Messier Objects",
            "Select * From SelvaneTable Where MessierNumber > 0 and catalog = '2000' order by "
            "MessierNumber"};
}

FixedList ShowObservedList(bool useCd)
{
    if (useCd)
        return {"Objects that have been observed",
                "SELECT  Logbook.*,SelvaneTable.* FROM Logbook INNER JOIN SelvaneTable ON "
                "(Logbook.Catalog = SelvaneTable.Catalog) AND (Logbook.ObjectId = "
                "SelvaneTable.ObjectID);",
                true};
    return {"Objects that have been observed",
            "Select * From SelvaneTable where Observed = -1 Order By ObjectID"};
}

FixedList ShowImageList()
{
    return {"Objects with Images to View",
            "Select * From SelvaneTable Where ImageFile <> ' ' and Catalog = '2000' order by "
            "ObjectID"};
}

FixedList mnuEight(const std::string& catalogLabel, const FilterLookups& lookups)
{
    FixedList list{"Objects brighter than 8th Magnitude", {}};
    const std::vector<std::string> catalogs = DecodeDesc(catalogLabel, DescTag::Catalogs);
    if (BeginsAll(catalogLabel) || catalogs.empty()) {
        list.SQL = "Select * From SelvaneTable Where Magnitude <= 8 order by Magnitude";
        return list;
    }
    list.SQL = "Select * From SelvaneTable Where Magnitude <= 8 And (";
    for (const std::string& description : catalogs)
        list.SQL += "Catalog = '" + Literal(GetCatalogID(lookups, description)) + "' or ";
    list.SQL.erase(list.SQL.size() - 3); // the last "or ", its blank before stays
    list.SQL += ")";
    return list;
}

FixedList Messier2()
{
    return {"Messier Objects Observed",
            "Select * From SelvaneTable Where MessierNumber > 0 and Observed = -1 and catalog = "
            "'2000'"};
}

FixedList Messier3()
{
    return {"Messier Objects Not Yet Observed",
            "Select * From SelvaneTable Where MessierNumber > 0 and Observed = 0 and catalog = "
            "'2000'"};
}

FixedList Herschel1()
{
    return {"Herschel Objects Observed",
            "Select * From SelvaneTable Where Catalog = '2000' and Observed = -1 and HOBJECT <> "
            "''"};
}

FixedList Herschel2()
{
    return {"Herschel Objects Not Observed",
            "Select * From SelvaneTable Where Catalog = '2000' and Observed = 0 and HOBJECT <> "
            "''"};
}

FixedList Herschel3()
{
    return {"Herschel Objects",
            "Select * From SelvaneTable Where Catalog = '2000' and HOBJECT <> ''"};
}

namespace {

// A fixed list's SQL without its ORDER BY, limited by magnitude and size, then ordered anew.
std::string WhatsUpSql(const std::string& listSql, std::string_view maxMag,
                       std::string_view maxSize, std::string_view orderBy)
{
    std::string sql = listSql;
    if (const size_t order = vb::UCase(sql).find(" ORDER BY "); order != std::string::npos)
        sql.erase(order);
    if (!IsBlank(maxMag))
        sql += " and Magnitude <= " + Number(maxMag);
    if (!IsBlank(maxSize))
        sql += " and ObjectSize <= " + Number(maxSize);
    if (!orderBy.empty())
        sql += " " + std::string(orderBy);
    return sql;
}

} // namespace

FixedList WhatsUpMessierList(std::string_view maxMag, std::string_view maxSize,
                             std::string_view orderBy)
{
    return {"What's Up - Messier Objects",
            WhatsUpSql(ShowMessierList().SQL, maxMag, maxSize, orderBy)};
}

FixedList WhatsUpHerschelList(std::string_view maxMag, std::string_view maxSize,
                              std::string_view orderBy)
{
    return {"What's Up - Herschel", WhatsUpSql(Herschel3().SQL, maxMag, maxSize, orderBy)};
}

std::optional<Refusal> CheckFixedList(FixedListKind kind, int currTab, bool databaseOnCd)
{
    if (currTab >= 5)
        return Refusal{NotSpreadsheetTabText, NotSpreadsheetTabTitle, "I"};
    // The observed list reads the logbook instead on such media (ShowObservedList).
    const bool readsObservedFlag =
        kind == FixedListKind::Messier2 || kind == FixedListKind::Messier3 ||
        kind == FixedListKind::Herschel1 || kind == FixedListKind::Herschel2;
    if (readsObservedFlag && databaseOnCd)
        return Refusal{ReadOnlyMediaText, ReadOnlyMediaTitle, "I"};
    return std::nullopt;
}

const std::vector<std::string>& ConstellationList()
{
    // IAU abbreviations and names, in the order of the names.
    static const std::vector<std::string> list{"And-Andromeda",
                                               "Ant-Antlia",
                                               "Aps-Apus",
                                               "Aqr-Aquarius",
                                               "Aql-Aquila",
                                               "Ara-Ara",
                                               "Ari-Aries",
                                               "Aur-Auriga",
                                               "Boo-Bootes",
                                               "Cae-Caelum",
                                               "Cam-Camelopardalis",
                                               "Cnc-Cancer",
                                               "CVn-Canes Venatici",
                                               "CMa-Canis Major",
                                               "CMi-Canis Minor",
                                               "Cap-Capricornus",
                                               "Car-Carina",
                                               "Cas-Cassiopeia",
                                               "Cen-Centaurus",
                                               "Cep-Cepheus",
                                               "Cet-Cetus",
                                               "Cha-Chamaleon",
                                               "Cir-Circinus",
                                               "Col-Columba",
                                               "Com-Coma Berenices",
                                               "CrA-Corona Australis",
                                               "CrB-Corona Borealis",
                                               "Crv-Corvus",
                                               "Crt-Crater",
                                               "Cru-Crux",
                                               "Cyg-Cygnus",
                                               "Del-Delphinus",
                                               "Dor-Dorado",
                                               "Dra-Draco",
                                               "Equ-Equuleus",
                                               "Eri-Eridanus",
                                               "For-Fornax",
                                               "Gem-Gemini",
                                               "Gru-Grus",
                                               "Her-Hercules",
                                               "Hor-Horologium",
                                               "Hya-Hydra",
                                               "Hyi-Hydrus",
                                               "Ind-Indus",
                                               "Lac-Lacerta",
                                               "Leo-Leo",
                                               "LMi-Leo Minor",
                                               "Lep-Lepus",
                                               "Lib-Libra",
                                               "Lup-Lupus",
                                               "Lyn-Lynx",
                                               "Lyr-Lyra",
                                               "Men-Mensa",
                                               "Mic-Microscopium",
                                               "Mon-Monoceros",
                                               "Mus-Musca",
                                               "Nor-Norma",
                                               "Oct-Octans",
                                               "Oph-Ophiucus",
                                               "Ori-Orion",
                                               "Pav-Pavo",
                                               "Peg-Pegasus",
                                               "Per-Perseus",
                                               "Phe-Phoenix",
                                               "Pic-Pictor",
                                               "Psc-Pisces",
                                               "PsA-Piscis Austrinus",
                                               "Pup-Puppis",
                                               "Pyx-Pyxis",
                                               "Ret-Reticulum",
                                               "Sge-Sagitta",
                                               "Sgr-Sagittarius",
                                               "Sco-Scorpius",
                                               "Scl-Sculptor",
                                               "Sct-Scutum",
                                               "Ser-Serpens",
                                               "Sex-Sextans",
                                               "Tau-Taurus",
                                               "Tel-Telescopium",
                                               "Tri-Triangulum",
                                               "TrA-Triangulum Australe",
                                               "Tuc-Tucana",
                                               "UMa-Ursa Major",
                                               "UMi-Ursa Minor",
                                               "Vel-Vela",
                                               "Vir-Virgo",
                                               "Vol-Volans",
                                               "Vul-Vulpecula"};
    return list;
}

} // namespace data
