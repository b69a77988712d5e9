#pragma once

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "apoyo.h"

namespace quimo::jet::prueba {

/// Makes values for a column: the ends of its range often, the rest at random.
class Generador {
public:
    explicit Generador(unsigned semilla) : azar_(semilla) {}
    std::size_t Hasta(std::size_t n) { return n == 0 ? 0 : azar_() % n; }
    bool UnaDe(std::size_t n) { return Hasta(n) == 0; }

    Valor ValorPara(const DefColumna& c) {
        if (c.tipo == TipoColumna::Logico) return UnaDe(2);
        if (UnaDe(8)) return {};
        switch (c.tipo) {
            case TipoColumna::Byte:
                return static_cast<std::int32_t>(Hasta(256));
            case TipoColumna::Entero:
                return UnaDe(4) ? (UnaDe(2) ? -32768 : 32767)
                                : static_cast<std::int32_t>(Hasta(65536)) - 32768;
            case TipoColumna::Largo:
                return UnaDe(6) ? (UnaDe(2) ? INT32_MIN : INT32_MAX)
                                : static_cast<std::int32_t>(Hasta(400)) - 200;
            case TipoColumna::Moneda:
                return base::Dinero::DeDiezmilesimas(Extremo<std::int64_t>());
            case TipoColumna::Simple:
                return static_cast<float>(Extremo<std::int32_t>()) / 8.0F;
            case TipoColumna::Doble:
                return UnaDe(6) ? 5e-324 : static_cast<double>(Extremo<std::int64_t>()) * 1e-7;
            case TipoColumna::Fecha:
                return *Fecha::DeCivil({static_cast<int>(100 + Hasta(9900)), 1 + Corto(12),
                                        1 + Corto(28), Corto(24), Corto(60), Corto(60)});
            case TipoColumna::Binario:
                return Bytes(Hasta(static_cast<std::size_t>(c.largo) + 1));
            case TipoColumna::Texto:
                return Texto(Largo(static_cast<std::size_t>(c.largo)));
            case TipoColumna::Ole:
                return Bytes(LargoDeMemo());
            case TipoColumna::Memo:
                return Texto(LargoDeMemo());
            case TipoColumna::Guid: {
                Guid guid;
                for (auto& b : guid.bytes)
                    b = static_cast<std::uint8_t>(Hasta(256));
                return guid;
            }
            case TipoColumna::Numerico: {
                base::Int128 digitos = Extremo<std::int64_t>();
                for (int i = 18; i > c.precision; --i)
                    digitos /= 10;
                return base::Decimal{digitos / 10, c.escala};
            }
            case TipoColumna::Logico:
            case TipoColumna::Bloque:
                break;
        }
        return {};
    }

private:
    int Corto(std::size_t n) { return static_cast<int>(Hasta(n)); }
    template <typename T>
    T Extremo() {
        if (UnaDe(6)) return std::numeric_limits<T>::min() + 1;
        if (UnaDe(6)) return std::numeric_limits<T>::max();
        return static_cast<T>(azar_()) * static_cast<T>(UnaDe(2) ? -1 : 1);
    }
    /// 0-3 characters and the limit come often.
    std::size_t Largo(std::size_t maximo) {
        return std::min(maximo, UnaDe(3) ? Hasta(4) : UnaDe(10) ? maximo : Hasta(40));
    }
    std::size_t LargoDeMemo() {
        static constexpr std::size_t kLargos[] = {0,   1,    2,    3,    31,   32,   33,   64,  65,
                                                  200, 1024, 1025, 2038, 2039, 4076, 4077, 9000};
        return kLargos[Hasta(std::size(kLargos))];
    }
    Binario Bytes(std::size_t n) {
        Binario bytes(n);
        for (auto& b : bytes)
            b = static_cast<std::uint8_t>(Hasta(256));
        return bytes;
    }
    std::u16string Texto(std::size_t n) {
        static constexpr std::u16string_view kSimples = u"abcdeABC áéñÑü-' 0123";
        static constexpr std::u16string_view kAmplios = u"aé—“”€ñ…";
        const auto letras = UnaDe(4) ? kAmplios : kSimples;
        std::u16string texto(n, u' ');
        for (char16_t& c : texto)
            c = letras[Hasta(letras.size())];
        return texto;
    }
    std::mt19937 azar_;
};

/// A table and what it should hold.
class Modelo {
public:
    Modelo(Tabla tabla, unsigned semilla) : tabla_(std::move(tabla)), gen_(semilla) {
        Cursor cursor = Exigir(tabla_.Recorrer());
        while (Exigir(cursor.Siguiente()))
            filas_[cursor.Id()] = cursor.Valores();
    }

    /// One insert, update or delete. Refusals by unique and required indexes change nothing.
    void Operar() {
        const std::size_t que = gen_.Hasta(10);
        if (filas_.empty() || que < 4) {
            Insertar();
        } else if (que < 8) {
            Actualizar();
        } else {
            const auto fila = Cualquiera();
            Exigir(tabla_.Borrar(fila->first));
            filas_.erase(fila);
        }
    }
    void BorrarTodo() {
        while (!filas_.empty()) {
            const auto fila = Cualquiera();
            Exigir(tabla_.Borrar(fila->first));
            filas_.erase(fila);
        }
    }
    void Vaciar() {
        Exigir(tabla_.Vaciar());
        filas_.clear();
    }
    std::size_t Cuantas() const { return filas_.size(); }

    /// Every row by scan, and by the walk along every index.
    void Comparar() {
        std::size_t vistas = 0;
        Cursor cursor = Exigir(tabla_.Recorrer());
        while (Exigir(cursor.Siguiente())) {
            ++vistas;
            ASSERT_EQ(filas_.count(cursor.Id()), 1U);
            ASSERT_TRUE(Iguales(cursor.Valores(), filas_[cursor.Id()])) << tabla_.Nombre();
        }
        ASSERT_EQ(vistas, filas_.size());
        for (const DefIndice& indice : tabla_.Definicion().indices)
            CompararIndice(indice);
    }

private:
    using Guardadas = std::map<IdFila, Fila>;
    Guardadas::iterator Cualquiera() {
        return std::next(filas_.begin(), static_cast<std::ptrdiff_t>(gen_.Hasta(filas_.size())));
    }
    static bool Iguales(const Fila& a, const Fila& b) {
        for (std::size_t i = 0; i < a.size(); ++i) {
            const auto* x = std::get_if<Fecha>(&a[i]);
            const auto* y = std::get_if<Fecha>(&b[i]);
            if (x != nullptr && y != nullptr ? x->ACivil() != y->ACivil() : a[i] != b[i])
                return false;
        }
        return a.size() == b.size();
    }
    static bool Aceptable(const Error& error) {
        return error.codigo == Error::Codigo::Restriccion ||
               error.mensaje.find("demasiado larga") != std::string::npos ||
               error.mensaje.find("Se acabaron los números") != std::string::npos ||
               error.mensaje.find("el máximo es 4060") != std::string::npos;
    }
    void Insertar() {
        Fila fila;
        for (const DefColumna& c : tabla_.Definicion().columnas) {
            fila.push_back(c.autonumerico && !gen_.UnaDe(5) ? Valor() : gen_.ValorPara(c));
            // A forced number at the end of the range would leave no further one.
            if (c.autonumerico && fila.back() == Valor(INT32_MAX)) fila.back() = Valor();
        }
        const auto id = tabla_.Insertar(fila);
        if (!id) {
            ASSERT_TRUE(Aceptable(id.error())) << id.error().mensaje;
            return;
        }
        for (std::size_t i = 0; i < fila.size(); ++i) {
            const DefColumna& c = tabla_.Definicion().columnas[i];
            if (c.autonumerico && EsNulo(fila[i])) fila[i] = Exigir(tabla_.Leer(*id))[i];
        }
        ASSERT_EQ(filas_.count(*id), 0U);
        filas_[*id] = fila;
    }
    void Actualizar() {
        const auto fila = Cualquiera();
        Fila nueva = fila->second;
        std::vector<Cambio> cambios;
        for (std::size_t n = 1 + gen_.Hasta(3); n > 0; --n) {
            const std::size_t i = gen_.Hasta(nueva.size());
            const DefColumna& c = tabla_.Definicion().columnas[i];
            if (c.autonumerico) continue;
            nueva[i] = gen_.ValorPara(c);
            cambios.push_back({i, nueva[i]});
        }
        const auto hecho = tabla_.Actualizar(fila->first, cambios);
        if (hecho) {
            fila->second = nueva;
        } else {
            ASSERT_TRUE(Aceptable(hecho.error())) << hecho.error().mensaje;
        }
    }
    void CompararIndice(const DefIndice& indice) {
        std::size_t con_entrada = 0;
        for (const auto& [id, fila] : filas_) {
            bool todas_nulas = true;
            for (const ColumnaDeIndice& c : indice.columnas) {
                todas_nulas = todas_nulas && EsNulo(fila[Exigir(tabla_.Columna(c.nombre))]);
            }
            if (!indice.ignora_nulos || !todas_nulas) ++con_entrada;
        }
        CursorIndice cursor = Exigir(tabla_.RecorrerIndice(indice.nombre));
        std::size_t vistas = 0;
        for (; Exigir(cursor.Siguiente()); ++vistas)
            ASSERT_EQ(filas_.count(cursor.Id()), 1U);
        ASSERT_EQ(vistas, con_entrada) << indice.nombre;
        if (filas_.empty()) return;
        const auto fila = Cualquiera();
        std::vector<Valor> clave;
        for (const ColumnaDeIndice& c : indice.columnas) {
            clave.push_back(fila->second[Exigir(tabla_.Columna(c.nombre))]);
        }
        const auto halladas = Exigir(tabla_.Buscar(indice.nombre, clave));
        const bool esperada =
            !indice.ignora_nulos || !std::all_of(clave.begin(), clave.end(), EsNulo);
        ASSERT_EQ(std::count(halladas.begin(), halladas.end(), fila->first), esperada ? 1 : 0)
            << indice.nombre;
    }

    Tabla tabla_;
    Generador gen_;
    Guardadas filas_;
};

}  // namespace quimo::jet::prueba
