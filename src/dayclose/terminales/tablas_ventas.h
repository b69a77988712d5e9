#pragma once

#include <array>
#include <span>

#include <QString>
#include <QStringList>

#include "base/dinero.h"

namespace quimo::dayclose {

/// The eight figures that a terminal's database and the central one are compared by.
enum class Cifra { PXC, Cta, Cmd, P, Ct, M, IXC, A };
inline constexpr std::size_t kCifras = 8;

struct DefCifra {
    Cifra cifra;
    const char16_t* registros = nullptr;         ///< column of #Tmp_Conciliacion
    const char16_t* total = nullptr;             ///< column of #Tmp_Conciliacion_Montos, or nullptr
    const char16_t* tabla = nullptr;             ///< terminal table that is counted
    const char16_t* columna_total = nullptr;     ///< column that is summed there, or nullptr
    bool solo_anulados = false;                  ///< counts only rows with a void type
    const char16_t* consulta_central = nullptr;  ///< %1 stands for the closing date
};

/// In the order of the columns of #Tmp_Conciliacion.
std::span<const DefCifra, kCifras> Cifras();

/// Counts and sums, by Cifra.
struct ValoresCifras {
    std::array<qint64, kCifras> registros{};
    std::array<base::Dinero, kCifras> totales{};
    bool operator==(const ValoresCifras&) const = default;
};

/// How a terminal's value is written into a statement.
enum class Forma {
    Numero,             ///< bare; flags as 1 and 0
    Texto,              ///< between quotes
    FechaHora,          ///< 'dd/mm/yyyy hh:mm:ss'
    FechaMedianoche,    ///< 'dd/mm/yyyy 00:00:00'
    FechaMinutosDoble,  ///< 'dd/mm/yyyy hh:mm:mm': the seconds' place repeats the minutes
};

struct CampoCopia {
    const char16_t* columna = nullptr;
    Forma forma = Forma::Numero;
};

/// How one sales table goes from a terminal to the central database. NULL is written as NULL.
struct DefCopia {
    const char16_t* tabla = nullptr;
    std::span<const Cifra> marcas;  ///< copied when one of these figures differs
    std::span<const char16_t* const> clave;
    std::span<const CampoCopia> al_modificar;
    std::span<const CampoCopia> al_insertar;
    bool limitada_al_dia = false;  ///< looked up only among the closing date's orders
};

/// In the order in which they are copied.
std::span<const DefCopia> Copias();

/// Their names, in the same order.
QStringList TablasDeVentas();

}  // namespace quimo::dayclose
