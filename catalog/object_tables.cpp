#include "catalog/object_tables.h"

// The object-type and catalogue vocabularies, as the program has always shown them
// (misspellings such as "Hipparchos" and "Stars (Brighest)" included).
namespace nocturnel {

const std::array<ObjectType, kObjectTypeCount> kObjectTypes = {{
    {0, "   ", "   ", 0},  // 0
    {0, "ASTER", "Asterism", 42},  // 1
    {1, "GLOCL", "Globular Cluster", 69},  // 2
    {1, "GX+GC", "Globular Cluster in a Galaxy", 69},  // 3
    {1, "LMCGC", "Globular Cluster in the LMC", 69},  // 4
    {1, "SMCGC", "Globular Cluster in the SMC", 69},  // 5
    {1, "OPNCL", "Open Cluster", 29},  // 6
    {1, "LMCOC", "Open Cluster in the LMC", 29},  // 7
    {1, "SMCOC", "Open Cluster in the SMC", 29},  // 8
    {4, "CL+NB", "Cluster with Nebulosity", 45},  // 9
    {4, "G+C+N", "Cluster with Nebulosity in a Galaxy", 0},  // 10
    {1, "LMCCN", "Cluster with Nebulosity in the LMC", 0},  // 11
    {1, "SMCCN", "Cluster with Nebulosity in the SMC", 0},  // 12
    {9, "COMET", "Comet&Asteroid", 0},  // 13
    {8, "CONST", "Constellation", 0},  // 14
    {10, "SATEL", "Earth Satellite", 0},  // 15
    {3, "GALXY", "Galaxy", 33},  // 16
    {3, "GALCL", "Galaxy Cluster", 51},  // 17
    {9, "MINOR", "Minor Planet/Asteroid", 0},  // 18
    {4, "NEBUL", "Nebula", 0},  // 19
    {4, "BRTNB", "Bright Nebula", 0},  // 20
    {4, "DRKNB", "Dark Nebula", 0},  // 21
    {4, "GX+DN", "Diffuse Nebula in a Galaxy", 0},  // 22
    {4, "LMCDN", "Diffuse Nebula in the LMC", 0},  // 23
    {4, "SMCDN", "Diffuse Nebula in the SMC", 0},  // 24
    {4, "PLNNB", "Planetary Nebula", 0},  // 25
    {0, "NONEX", "Nonexistent in RNGC", 93},  // 26
    {7, "PLANET", "Planet", 0},  // 27
    {0, "PLSAR", "Pulsar", 0},  // 28
    {0, "METEOR", "Meteor Showers", 0},  // 29
    {5, "1STAR", "Star", 0},  // 30
    {6, "2STAR", "Stars (Double)", 40},  // 31
    {6, "3STAR", "Stars (Triple)", 0},  // 32
    {6, "4STAR", "Stars (Quadruple)", 0},  // 33
    {6, "5STAR", "Stars (Five)", 0},  // 34
    {6, "6STAR", "Stars (Six)", 0},  // 35
    {6, "7STAR", "Stars (Seven)", 0},  // 36
    {6, "8STAR", "Stars (Eight)", 0},  // 37
    {5, "VSTAR", "Star Variable", 0},  // 38
    {2, "SNREM", "Supernova Remnant", 0},  // 39
    {0, "UVSOB", "Unverified Southern Object", 0},  // 40
}};

const std::array<CatalogDefinition, kCatalogCount> kCatalogDefinitions = {{
    {"None", "No Criteria", 50000, 0},  // 0
    {"Abell", "Abell", 1130, 3869},  // 1
    {"B", "Barnard", 3869, 3985},  // 2
    {"Basel", "Basel", 3985, 3998},  // 3
    {"Berk", "Berkeley", 3998, 4091},  // 4
    {"Be", "Bernes", 50000, 0},  // 5
    {"Biur", "Biurakan", 4091, 4100},  // 6
    {"Blanco", "Blanco", 4100, 4101},  // 7
    {"Bochum", "Bochum", 4101, 4103},  // 8
    {"C", "Caldwell", 1127, 1130},  // 9
    {"Ced", "Cederblad", 4103, 4114},  // 10
    {"Cr", "Collinder", 4114, 4185},  // 11
    {"Comet", "Comet&Asteroid", 50000, 0},  // 12
    {"      ", "Constellation", 50000, 0},  // 13
    {"Czernik", "Czernik", 4185, 4224},  // 14
    {"Do", "Dolidze", 4224, 4268},  // 15
    {"DoDz", "Dolidze-Dzimselej", 4268, 4279},  // 16
    {"Graff", "Graff", 4279, 4280},  // 17
    {"Graham", "Graham", 4280, 4281},  // 18
    {"Grindlay", "Grindlay", 4281, 4282},  // 19
    {"Gum", "Gum", 4282, 4291},  // 20
    {"HA", "HA", 4291, 4292},  // 21
    {"Haffner", "Haffner", 4292, 4314},  // 22
    {"Harvard", "Harvard", 4314, 4323},  // 23
    {"HP", "Haute Provence", 4344, 4345},  // 24
    {"H", "Herschel", 50000, 0},  // 25
    {"HIP", "Hipparchos", 50000, 0},  // 26
    {"Hogg", "Hogg", 4323, 4344},  // 27
    {"HR", "HR", 50000, 0},  // 28
    {"IC", "IC", 4345, 9977},  // 29
    {"Isk", "Iskudarian", 9977, 9978},  // 30
    {"King", "King", 9978, 10002},  // 31
    {"Lg", "Lg", 10017, 10018},  // 32
    {"Liller", "Liller", 10018, 10019},  // 33
    {"LDN", "Lynds", 10002, 10017},  // 34
    {"Lynga", "Lynga", 10019, 10033},  // 35
    {"Maffei", "Maffei", 1126, 10034},  // 36
    {"Mrk", "Markarian", 10049, 10052},  // 37
    {"Mayer", "Mayer", 10034, 10037},  // 38
    {"Mel", "Melotte", 10037, 10049},  // 39
    {"M", "Messier", 50000, 0},  // 40
    {"Meteor", "Meteor Showers", 50000, 0},  // 41
    {"NGC", "NGC", 10054, 18520},  // 42
    {"Pal", "Palomar", 18520, 18534},  // 43
    {"Pismis", "Pismis", 18534, 18557},  // 44
    {"      ", "Planet", 50000, 0},  // 45
    {"RCW", "RCW", 18557, 18566},  // 46
    {"Roslund", "Roslund", 18566, 18572},  // 47
    {"Ru", "Ruprecht", 18572, 18743},  // 48
    {"SAC", "110 Best of NGC", 50000, 0},  // 49
    {"Sa", "Sandqvist", 18743, 18745},  // 50
    {"SAO", "SAO Double Star", 18745, 18912},  // 51
    {"Sh2", "Sharpless", 18912, 18956},  // 52
    {"SL", "SL", 18956, 18964},  // 53
    {"      ", "Stars (Brighest)", 50000, 0},  // 54
    {"Steph", "Stephenson", 18964, 18965},  // 55
    {"Stock", "Stock", 18965, 18986},  // 56
    {"Ter", "Terzan", 18986, 18997},  // 57
    {"Tombaugh", "Tombaugh", 18997, 19001},  // 58
    {"Tr", "Trumpler", 19001, 19035},  // 59
    {"TYC", "Tycho", 50000, 0},  // 60
    {"UGC", "UGC", 19035, 19302},  // 61
    {"UGCA", "UGCA", 19302, 19303},  // 62
    {"User", "User catalog", 50000, 0},  // 63
    {"vdB", "Van den Bergh", 19303, 19338},  // 64
    {"vdB-Ha", "Van den Bergh-Hagen", 19338, 19399},  // 65
    {"Waterloo", "Waterloo", 19399, 19400},  // 66
    {"Westr", "Westerlund", 19400, 19401},  // 67
}};

}  // namespace nocturnel
