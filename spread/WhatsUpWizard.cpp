#include "spread/WhatsUpWizard.h"

#include "data/Database.h"
#include "data/ObjectFilter.h"
#include "services/Vb.h"
#include "spread/Spreadsheet.h"

#include <QDate>
#include <QTime>

#include <algorithm>

namespace spread {

namespace vb = services::vb;

namespace {

// clang-format off
constexpr std::array<const char*, 88> Constellations{
    "And-Andromeda", "Ant-Antilia", "Aps-Apus", "Aql-Aquila", "Aqr-Aquarius", "Ara-Ara",
    "Ari-Aries", "Aur-Auriga", "Boo-Bootes", "Cae-Caelum", "Cam-Camelopardalis",
    "Cap-Capricornus", "Car-Carina", "Cas-Cassiopeia", "Cen-Centaurus", "Cep-Cepheus",
    "Cet-Cetus", "Cha-Chamaelon", "Cir-Circinus", "Cma-Canis Major", "Cmi-Canis Minor",
    "Cnc-Cancer", "Col-Columbia", "Com-Coma Berenices", "Cra-Corona Australis",
    "Crb-Corona Borealis", "Crt-Crater", "Cru-Crux", "Crv-Corvus", "Cvn-Canes Venatici",
    "Cyg-Cygnus", "Del-Delphinus", "Dor-Dorado", "Dra-Draco", "Equ-Equuleus", "Eri-Eridanus",
    "For-Fornax", "Gem-Gemini", "Gru-Grus", "Her-Hercules", "Hor-Horologium", "Hya-Hydra",
    "Hyi-Hydrus", "Ind-Indus", "Lac-Lacerta", "Leo-Leo", "Lep-Lepus", "Lib-Libra",
    "Lmi-Leo Minor", "Lup-Lupus", "Lyn-Lynx", "Lyr-Lyra", "Men-Mensa", "Mic-Microscopium",
    "Mon-Monoceros", "Mus-Musca", "Nor-Norma", "Oct-Octans", "Oph-Ophiuchus", "Ori-Orion",
    "Pav-Pavo", "Peg-Pegasus", "Per-Perseus", "Phe-Phoenix", "Pic-Pictor",
    "Psa-Piscis Australis", "Psc-Pisces", "Pup-Puppis", "Pyx-Pyxis", "Ret-Reticulum",
    "Scl-Sculptor", "Sco-Scorpius", "Sct-Scutum", "Ser-Serpens", "Sex-Sextans", "Sge-Sagitta",
    "Sgr-Sagittarius", "Tau-Taurus", "Tel-Telescopium", "Tra-Triangulum Australe",
    "Tri-Triangulum", "Tuc-Tucana", "Uma-Ursa Major", "Umi-Ursa Minor", "Vel-Vela",
    "Vir-Virgo", "Vol-Volans", "Vul-Vulpecula",
};
// clang-format on

bool IsSolarSystemCatalog(std::string_view text)
{
    for (const char* name : {"PLANETS", "COMET", "ASTEROID"})
        if (vb::SameText(vb::Trim(text), name))
            return true;
    return false;
}

std::string Flag(bool on)
{
    return on ? "Y" : "N";
}

// A sort level's name as the settings keep it: "<none>" is no sort.
std::string SortSetting(const std::string& comboText)
{
    return comboText == WizardNoSort ? std::string() : comboText;
}

// A typed time in the one form the sky routines read ("hh:mm"); a text that is no time is kept
// as typed.
std::string TimeSetting(const std::string& typed)
{
    if (const auto time = vb::ParseTime(vb::Trim(typed)))
        return vb::FormatTime(*time, "hh:mm");
    return typed;
}

// Sets values for one load and puts them back when it ends, however it ends.
class LoadOverrides
{
public:
    explicit LoadOverrides(data::Preferences& prefs) : prefs_(prefs), saved_(prefs) {}
    ~LoadOverrides()
    {
        prefs_.sort1 = saved_.sort1;
        prefs_.sort2 = saved_.sort2;
        prefs_.sort3 = saved_.sort3;
        prefs_.Des1 = saved_.Des1;
        prefs_.Des2 = saved_.Des2;
        prefs_.Des3 = saved_.Des3;
        prefs_.Pminalt = saved_.Pminalt;
    }
    LoadOverrides(const LoadOverrides&) = delete;
    LoadOverrides& operator=(const LoadOverrides&) = delete;

private:
    data::Preferences& prefs_;
    const data::Preferences saved_;
};

bool WhatsUpList(AppState& TMM, bool herschel, const std::function<void()>& loadTheGrid)
{
    if (TMM.CurrTab < 0 || TMM.CurrTab >= kSpreadTabs) {
        TMM.ui.ShowMessage(data::NotSpreadsheetTabText, data::NotSpreadsheetTabTitle, "I");
        return false;
    }
    data::Preferences& p = TMM.prefs;
    const std::string& entry = herschel ? p.PsSort : p.PmSort;
    const std::string& direction = herschel ? p.Pssorto : p.Pmsorto;
    const std::vector<std::string>& names = WizardSortList();
    const double index = vb::Val(entry);
    data::ObjectFilter sort;
    if (index >= 0 && index < static_cast<double>(names.size()) && index == vb::Int(index))
        sort.sort1 = SortSetting(names[static_cast<std::size_t>(index)]);
    sort.Des1 = direction == "D" ? "D" : "";
    const std::string orderBy = data::BuildOrderBy(sort);
    const data::FixedList list = herschel
                                     ? data::WhatsUpHerschelList(p.PMaxMag, p.PMaxSize, orderBy)
                                     : data::WhatsUpMessierList(p.PMaxMag, p.PMaxSize, orderBy);

    TMM.grids[static_cast<std::size_t>(TMM.CurrTab)].SetTag(list.Tag);
    TMM.SQL = list.SQL;
    const LoadOverrides overrides(p);
    // A computed sort (Altitude) is made by the grid after the load, from sort1 and Des1.
    p.sort1 = sort.sort1;
    p.sort2.clear();
    p.sort3.clear();
    p.Des1 = sort.Des1;
    p.Des2.clear();
    p.Des3.clear();
    if (vb::Trim(p.Pminalt).empty())
        p.Pminalt = "0";
    loadTheGrid();
    return true;
}

} // namespace

const std::vector<std::string>& WizardConstellationList()
{
    static const std::vector<std::string> list = [] {
        std::vector<std::string> entries{WizardAllConstellations};
        entries.insert(entries.end(), Constellations.begin(), Constellations.end());
        return entries;
    }();
    return list;
}

const std::vector<std::string>& WizardSortList()
{
    // Every level offers the computed columns too; the grid sorts by them after the load.
    static const std::vector<std::string> list = data::SortComboList(2);
    return list;
}

std::vector<std::string> LoadWizardTypes(data::Database& objectDb)
{
    std::vector<std::string> list{WizardAllTypes};
    data::Recordset rs = objectDb.OpenRecordset(
        "Select ID, ObjectType, ObjectTypeDesc From ValidObjectTypes Order By ObjectTypeDesc",
        data::Snapshot);
    data::Field description = rs.Fields("ObjectTypeDesc");
    for (; !rs.Eof(); rs.MoveNext())
        list.push_back(description.Value());
    return list;
}

std::vector<std::string> LoadWizardCatalogs(data::Database& objectDb)
{
    std::vector<std::string> list{WizardAllCatalogs};
    data::Recordset rs = objectDb.OpenRecordset("Select ID, CatalogName, CatalogDescription From "
                                                "CatalogLookup Order By CatalogDescription",
                                                data::Snapshot);
    data::Field name = rs.Fields("CatalogName");
    data::Field description = rs.Fields("CatalogDescription");
    for (; !rs.Eof(); rs.MoveNext())
        if (!IsSolarSystemCatalog(name.Text()) && !IsSolarSystemCatalog(description.Text()))
            list.push_back(description.Value());
    return list;
}

void WizardList::SetItems(std::vector<std::string> entries)
{
    items = std::move(entries);
    selected.assign(items.size(), false);
}

bool WizardList::Select(std::string_view item, bool on)
{
    const auto found = std::find(items.begin(), items.end(), item);
    if (found == items.end())
        return false;
    selected[static_cast<std::size_t>(found - items.begin())] = on;
    return true;
}

std::vector<std::string> WizardList::Selected() const
{
    std::vector<std::string> picked;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (selected[i])
            picked.push_back(items[i]);
    return picked;
}

WhatsUpWizard::WhatsUpWizard(AppState& state, const astro::Clock& clock, WizardHooks hooks)
    : TMM(state), clock_(clock), hooks_(std::move(hooks))
{
}

void WhatsUpWizard::Load()
{
    const data::Preferences& p = TMM.prefs;
    SavePrefs();

    lstCon.SetItems(WizardConstellationList());
    lstType.SetItems(TMM.objectDb ? LoadWizardTypes(*TMM.objectDb)
                                  : std::vector<std::string>{WizardAllTypes});
    lstCat.SetItems(TMM.objectDb ? LoadWizardCatalogs(*TMM.objectDb)
                                 : std::vector<std::string>{WizardAllCatalogs});
    sites = TMM.logbookDb ? data::LoadObservingSites(*TMM.logbookDb) : std::vector<data::Place>{};
    const std::array<const std::string*, 3> sorts{&p.sort1, &p.sort2, &p.sort3};
    const std::array<const std::string*, 3> des{&p.Des1, &p.Des2, &p.Des3};
    const std::vector<std::string>& names = WizardSortList();
    for (std::size_t i = 0; i < 3; ++i) {
        const bool listed = std::find(names.begin(), names.end(), *sorts[i]) != names.end();
        cbosort[i] = listed ? *sorts[i] : std::string(WizardNoSort);
        chkD[i] = *des[i] == "D";
    }

    const astro::LocalDateTime today = clock_.Now();
    txtDate = vb::ShortDate(QDate(today.year, today.month, today.day), data::RegionalOf(p));
    txtTime = p.Ptime;
    // The current site is the first whose place is the one in force; none when no site is.
    site_.reset();
    cboSite.clear();
    for (const data::Place& s : sites)
        if (s.Latitude == p.Plat && s.Longitude == p.PLon && s.TimeZone == p.PTz) {
            site_ = s;
            cboSite = s.name;
            break;
        }
    txtMagL = {p.gMagL, p.gMagL2};
    txtMagU = {p.gMagU, p.gMagU2};
    chkIB = p.PIB == "Y";
    chkIB2 = p.PIB2 == "Y";
    txtMinAlt = p.Pminalt;

    TMM.prefs.wuw = true;
    TMM.settings.Save("wuw", "True");
    TMM.settings.Sync();
    chkwizapply = p.wizapppref;

    selections = {{"CON", {}}, {"TYP", {}}, {"CAT", {}}};
    page_ = 1;
    closed_ = false;
}

const char* WhatsUpWizard::NextCaption() const
{
    return page_ == kWizardPages ? WizardFinishCaption : WizardNextCaption;
}

void WhatsUpWizard::Next()
{
    if (closed_)
        return;
    data::Preferences& p = TMM.prefs;
    switch (page_) {
    case 1:
        NextPage1();
        break;
    case 2:
        NextPage2();
        break;
    case 4:
        NextPage3();
        break;
    case 5:
        if (!vb::Trim(txtTime).empty())
            p.Ptime = TimeSetting(txtTime);
        p.PDate = txtDate;
        break;
    case kWizardPages:
        SetGlobals();
        WizardComplete();
        if (!chkwizapply)
            UndoPrefs();
        if (hooks_.RefreshPref)
            hooks_.RefreshPref();
        else
            RefreshPref(TMM);
        closed_ = true;
        return;
    default:
        break;
    }
    ++page_;
}

void WhatsUpWizard::Back()
{
    if (!closed_ && page_ > 1)
        --page_;
}

void WhatsUpWizard::Cancel()
{
    closed_ = true;
}

void WhatsUpWizard::Now()
{
    const astro::LocalDateTime now = clock_.Now();
    txtDate = vb::ShortDate(QDate(now.year, now.month, now.day), data::RegionalOf(TMM.prefs));
    txtTime = vb::FormatTime(QTime(now.hour, now.minute), "hh:mm");
}

bool WhatsUpWizard::SelectSite(const std::string& name)
{
    if (vb::Trim(name).empty()) {
        site_.reset();
        cboSite.clear();
        return true;
    }
    for (const data::Place& s : sites)
        if (vb::SameText(s.name, vb::Trim(name))) {
            site_ = s;
            cboSite = s.name;
            return true;
        }
    return false;
}

void WhatsUpWizard::chkwizapply_Click(bool checked)
{
    chkwizapply = checked;
    TMM.prefs.wizapppref = checked;
    TMM.settings.Save("wizapppref", checked ? "True" : "False");
    TMM.settings.Sync();
}

void WhatsUpWizard::SavePrefs()
{
    const data::Preferences& p = TMM.prefs;
    WizardSnapshot& s = snapshot_;
    s.gMagL = p.gMagL;
    s.gMagL2 = p.gMagL2;
    s.gMagU = p.gMagU;
    s.gMagU2 = p.gMagU2;
    s.Obcon = p.Obcon;
    s.Obtod = p.Obtod;
    s.ObCat = p.ObCat;
    s.sort1 = p.sort1;
    s.sort2 = p.sort2;
    s.sort3 = p.sort3;
    s.Des1 = p.Des1;
    s.Des2 = p.Des2;
    s.Des3 = p.Des3;
    s.PDate = p.PDate;
    s.Plat = p.Plat;
    s.PTz = p.PTz;
    s.Ptime = p.Ptime;
    s.PIB = p.PIB;
    s.PIB2 = p.PIB2;
    s.Pminalt = p.Pminalt;
    s.PLon = p.PLon;
}

void WhatsUpWizard::NextPage(const WizardList& list, std::string& value, const char* key)
{
    std::vector<std::string>& taken = selections[key];
    value.clear();
    taken.clear();
    // The first entry is the list's "All ..."; with it, or with nothing selected, no entry
    // restricts the list.
    const bool all = list.selected.empty() || list.selected.front();
    if (!all)
        for (const std::string& entry : list.Selected()) {
            value += entry + ";";
            taken.push_back(entry);
        }
    SetFilterLabels(TMM);
}

void WhatsUpWizard::NextPage1()
{
    NextPage(lstCon, TMM.prefs.Obcon, "CON");
}

void WhatsUpWizard::NextPage2()
{
    NextPage(lstType, TMM.prefs.Obtod, "TYP");
}

void WhatsUpWizard::NextPage3()
{
    NextPage(lstCat, TMM.prefs.ObCat, "CAT");
}

void WhatsUpWizard::SetGlobals()
{
    data::Preferences& p = TMM.prefs;
    p.sort1 = SortSetting(cbosort[0]);
    p.sort2 = SortSetting(cbosort[1]);
    p.sort3 = SortSetting(cbosort[2]);
    p.Des1 = chkD[0] ? "D" : "";
    p.Des2 = chkD[1] ? "D" : "";
    p.Des3 = chkD[2] ? "D" : "";
    if (site_) {
        p.Plat = site_->Latitude;
        p.PLon = site_->Longitude;
        p.PTz = site_->TimeZone;
    }
    p.PIB = Flag(chkIB);
    p.PIB2 = Flag(chkIB2);
    p.Pminalt = txtMinAlt;
    p.gMagL = txtMagL[0];
    p.gMagL2 = txtMagL[1];
    p.gMagU = txtMagU[0];
    p.gMagU2 = txtMagU[1];
    UpdateSpreadsheetSort();
}

void WhatsUpWizard::UndoPrefs()
{
    data::Preferences& p = TMM.prefs;
    const WizardSnapshot& s = snapshot_;
    p.gMagL = s.gMagL;
    p.gMagL2 = s.gMagL2;
    p.gMagU = s.gMagU;
    p.gMagU2 = s.gMagU2;
    p.Obcon = s.Obcon;
    p.Obtod = s.Obtod;
    p.ObCat = s.ObCat;
    p.sort1 = s.sort1;
    p.sort2 = s.sort2;
    p.sort3 = s.sort3;
    p.Des1 = s.Des1;
    p.Des2 = s.Des2;
    p.Des3 = s.Des3;
    p.PDate = s.PDate;
    p.Plat = s.Plat;
    p.PTz = s.PTz;
    p.Ptime = s.Ptime;
    p.PIB = s.PIB;
    p.PIB2 = s.PIB2;
    p.Pminalt = s.Pminalt;
    // Deliberate: the longitude goes back with the latitude and zone it belongs to.
    p.PLon = s.PLon;
    // The filter panel shows what is in force again: selections, magnitudes and sorts.
    SetFilterLabels(TMM);
    UpdateSpreadsheetSort();
}

void WhatsUpWizard::WizardComplete()
{
    const data::Preferences& p = TMM.prefs;
    data::ObjectFilter f;
    f.ObCat = p.ObCat;
    f.Obcon = p.Obcon;
    f.Obtod = p.Obtod;
    f.gMagL = p.gMagL;
    f.gMagU = p.gMagU;
    f.gMagL2 = p.gMagL2;
    f.gMagU2 = p.gMagU2;
    f.PIB = p.PIB;
    f.PIB2 = p.PIB2;
    f.sort1 = p.sort1;
    f.sort2 = p.sort2;
    f.sort3 = p.sort3;
    f.Des1 = p.Des1;
    f.Des2 = p.Des2;
    f.Des3 = p.Des3;
    data::FilterLookups lookups;
    if (TMM.objectDb)
        lookups = data::LoadFilterLookups(*TMM.objectDb);
    const data::SqlSelect select = data::WizardSQLSelectString(f, lookups);
    TMM.SQL = select.SQL;
    TMM.OrderBy = select.OrderBy;
    if (TMM.CurrTab >= 0 && TMM.CurrTab < kSpreadTabs)
        TMM.grids[static_cast<std::size_t>(TMM.CurrTab)].SetTag({});
    if (hooks_.LoadTheGrid) {
        hooks_.LoadTheGrid();
        return;
    }
    if (TMM.CurrTab >= 0 && TMM.CurrTab < kSpreadTabs)
        LoadTheGrid(TMM, TMM.grids[static_cast<std::size_t>(TMM.CurrTab)], LoadMode::NoBuild, load_,
                    clock_);
}

void WhatsUpWizard::UpdateSpreadsheetSort()
{
    SetSortOptions(TMM);
}

bool Wiz2(AppState& TMM, const std::function<void()>& loadTheGrid)
{
    return WhatsUpList(TMM, false, loadTheGrid);
}

bool Wiz3(AppState& TMM, const std::function<void()>& loadTheGrid)
{
    return WhatsUpList(TMM, true, loadTheGrid);
}

} // namespace spread
