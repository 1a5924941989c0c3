// The types that the US customary system shows in another unit, one row per SNVT id. Ids and
// units are those of the shipped dictionary (data/snvts.xml). A difference (of temperatures,
// or a rate of change) is a row with offset 0: 1 K of difference is 1.8 °F, not 33.8.
// Left out: energies in J or kJ, whose US unit depends on the trade.
#include "datatypes/UnitConverter.h"

namespace zerbin {
namespace {

constexpr double kInchesOfWaterPerPascal = 1.0 / 249.08891;  // conventional, water at 4 °C
constexpr double kPsiPerKilopascal = 1.0 / 6.894757293168;
constexpr double kFeetPerMetre = 1.0 / 0.3048;
constexpr double kCubicFeetPerCubicMetre = kFeetPerMetre * kFeetPerMetre * kFeetPerMetre;
constexpr double kGallonsPerLitre = 1.0 / 3.785411784;  // US liquid gallon
constexpr double kPoundsPerKilogram = 1.0 / 0.45359237;

constexpr UnitConversion kUsCustomary[] = {
    // id    metric    US        factor                        offset decimals
    {"39", "°C", "°F", 1.8, 32.0, 1},                                  // SNVT_temp
    {"63", "°C", "°F", 1.8, 32.0, 2},                                  // SNVT_temp_f
    {"105", "°C", "°F", 1.8, 32.0, 2},                                 // SNVT_temp_p
    {"30", "kPa", "psi", kPsiPerKilopascal, 0.0, 2},                   // SNVT_press
    {"59", "Pa", "inH2O", kInchesOfWaterPerPascal, 0.0, 3},            // SNVT_press_f
    {"113", "Pa", "inH2O", kInchesOfWaterPerPascal, 0.0, 3},           // SNVT_press_p
    {"15", "l/s", "gpm", kGallonsPerLitre * 60.0, 0.0, 0},             // SNVT_flow
    {"53", "l/s", "gpm", kGallonsPerLitre * 60.0, 0.0, 2},             // SNVT_flow_f
    {"17", "m", "ft", kFeetPerMetre, 0.0, 1},                          // SNVT_length
    {"54", "m", "ft", kFeetPerMetre, 0.0, 2},                          // SNVT_length_f
    {"20", "mm", "in", 1.0 / 25.4, 0.0, 3},                            // SNVT_length_mil
    {"34", "m/s", "fpm", kFeetPerMetre * 60.0, 0.0, 0},                // SNVT_speed
    {"62", "m/s", "fpm", kFeetPerMetre * 60.0, 0.0, 1},                // SNVT_speed_f
    {"41", "l", "gal", kGallonsPerLitre, 0.0, 2},                      // SNVT_vol
    {"65", "l", "gal", kGallonsPerLitre, 0.0, 2},                      // SNVT_vol_f
    {"42", "kl", "ft³", kCubicFeetPerCubicMetre, 0.0, 0},              // SNVT_vol_kilo: kl = m³
    {"24", "kg", "lb", kPoundsPerKilogram, 0.0, 1},                    // SNVT_mass_kilo
    {"35", "m/s", "fpm", kFeetPerMetre * 60.0, 0.0, 0},                // SNVT_speed_mil
    {"110", "m²", "ft²", kFeetPerMetre* kFeetPerMetre, 0.0, 2},        // SNVT_area
    {"161", "m³/h", "gpm", kGallonsPerLitre * 1000.0 / 60.0, 0.0, 1},  // SNVT_flow_p
    // Differences: no offset.
    {"147", "°C", "°F", 1.8, 0.0, 2},          // SNVT_temp_diff_p
    {"131", "°C/min", "°F/min", 1.8, 0.0, 1},  // SNVT_temp_ror
};

}  // namespace

UnitConversionTable::UnitConversionTable(std::span<const UnitConversion> rows) : rows_(rows) {
    byId_.reserve(rows.size());
    for (const UnitConversion& row : rows) {
        byId_.try_emplace(row.typeId, &row);
    }
}

const UnitConversion* UnitConversionTable::Find(std::string_view typeId) const {
    const auto found = byId_.find(typeId);
    return found == byId_.end() ? nullptr : found->second;
}

std::shared_ptr<const UnitConversionTable> UsCustomaryTable() {
    static const auto table = std::make_shared<const UnitConversionTable>(kUsCustomary);
    return table;
}

}  // namespace zerbin
