#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "jet/almacen.h"
#include "jet/esquema.h"
#include "jet/largos.h"
#include "jet/pagina_datos.h"
#include "jet/tipos_fila.h"

/// The bytes of a row, and the values in them.
namespace quimo::jet {

/// A row taken apart, its offsets checked. It looks into the page's bytes.
class VistaFila {
public:
    /// Nothing when the row is damaged.
    static std::optional<VistaFila> De(const Esquema& esquema, std::span<const std::uint8_t> bytes);

    /// Whether every variable column begins in the row and none before the one before it, also
    /// those without a value, which nobody reads.
    bool PosicionesSanas() const;
    std::size_t Columnas() const { return columnas_; }
    std::size_t Variables() const { return variables_; }
    /// The null-mask bit: has a value; for Yes/No, is true.
    bool Bit(const ColumnaFisica& columna) const {
        return columna.numero < columnas_ &&
               (mascara_[columna.numero / 8] >> (columna.numero % 8) & 1) != 0;
    }
    /// The bytes of a column whose bit is set. Nothing when they do not lie in the row.
    std::optional<std::span<const std::uint8_t>> Bytes(const ColumnaFisica& columna) const;

private:
    std::span<const std::uint8_t> bytes_;
    const std::uint8_t* mascara_ = nullptr;
    std::size_t columnas_ = 0;
    std::size_t variables_ = 0;
    std::size_t fin_fija_ = 0;         // where the fixed part ends at the latest
    const std::uint8_t* v_ = nullptr;  // the field with the number of variable slots
};

/// What reading the values of many rows needs again and again.
struct Lectura {
    Almacen& almacen;
    Presupuesto presupuesto;
    std::vector<std::uint8_t> largo = {};  // scratch
    explicit Lectura(Almacen& a) : almacen(a), presupuesto(a) {}
};

/// One value of a row. `destino` keeps its memory where it can.
Result<void> LeerValor(Lectura& lectura, const Esquema& esquema, const VistaFila& vista,
                       std::size_t columna, Valor& destino);
Result<void> LeerValores(Lectura& lectura, const Esquema& esquema,
                         std::span<const std::uint8_t> bytes, Fila& destino);

/// Follows a moved row to its content and returns the place of the content. `paso`, if given, takes
/// the places after the row's own, the last one that of the content.
Result<FilaCruda> SeguirFila(Almacen& almacen, const Esquema& esquema, Puntero lugar,
                             std::vector<Puntero>* paso = nullptr);
/// The row that a scan would meet there, or NoEncontrado.
Result<FilaCruda> AbrirFila(Almacen& almacen, const Esquema& esquema, IdFila id,
                            std::vector<Puntero>* paso = nullptr);

/// Stored text, plain or compressed.
void DescifrarTexto(std::span<const std::uint8_t> bytes, std::u16string& destino);
std::vector<std::uint8_t> CifrarTexto(std::u16string_view texto, bool comprimible);

/// A value on its way into a row.
struct Celda {
    bool tiene_valor = false;  // the null-mask bit
    bool por_guardar = false;  // bytes are the content of a long value, not a descriptor
    std::vector<std::uint8_t> bytes = {};
};

/// The stored form of a value for that column, checked against its type and limits.
Result<Celda> CifrarValor(const Esquema& esquema, std::size_t columna, const Valor& valor);
/// Gives a value of a type of one size the form in which a cell of it reads back, so that it has
/// the same key.
void Canonizar(const Esquema& esquema, std::size_t columna, const Celda& celda, Valor& valor);
/// The stored form of a column in an existing row, as it is.
std::optional<Celda> CeldaDeFila(const Esquema& esquema, const VistaFila& vista,
                                 std::size_t columna);
/// The row of those cells, none of which is por_guardar.
std::vector<std::uint8_t> ArmarFila(const Esquema& esquema, std::span<const Celda> celdas);
std::size_t LargoDeFila(const Esquema& esquema, std::span<const Celda> celdas);

/// A value for a message to the user: short, in one line.
std::string Mostrar(const Valor& valor);
/// "la columna X de la tabla Y".
std::string NombrarColumna(const Esquema& esquema, std::size_t columna);

}  // namespace quimo::jet
