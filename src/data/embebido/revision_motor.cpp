#include "data/embebido/revision_motor.h"

#include <algorithm>

#include "data/embebido/errores_motor.h"

namespace quimo::data::embebido {

namespace {

/// What the engine says of one table in one way, however often.
struct Queja {
    int numero = HallazgoMotor::kPagina;
    std::string indice;
    std::string primera;
    int veces = 1;
};

/// The engine calls an index "Table$Index" and adds "$..." to those that it keeps beside it.
std::string NombreDeIndice(const std::string& interno, const std::string& tabla) {
    if (!interno.starts_with(tabla + "$")) return interno;
    const std::string nombre = interno.substr(tabla.size() + 1);
    return nombre.substr(0, nombre.find('$'));
}

Queja LeerQueja(const std::string& linea, const std::string& tabla) {
    constexpr std::string_view kDeIndice = " index ";
    Queja queja;
    queja.primera = linea;
    const auto indice = linea.rfind(kDeIndice);
    if (indice != std::string::npos) {
        queja.numero = HallazgoMotor::kIndice;
        queja.indice = NombreDeIndice(linea.substr(indice + kDeIndice.size()), tabla);
    } else if (linea.find(" value in ") != std::string::npos || linea.starts_with("CHECK ")) {
        queja.numero = HallazgoMotor::kValor;
    }
    return queja;
}

/// One row of the engine's answer: "ok", or lines below a heading.
void Juntar(const std::string& respuesta, const std::string& tabla, std::vector<Queja>& quejas) {
    if (respuesta == "ok") return;
    for (std::size_t i = 0; i < respuesta.size();) {
        const auto fin = std::min(respuesta.find('\n', i), respuesta.size());
        const std::string linea = respuesta.substr(i, fin - i);
        i = fin + 1;
        if (linea.empty() || linea.starts_with("***")) continue;
        Queja queja = LeerQueja(linea, tabla);
        const auto igual = std::find_if(quejas.begin(), quejas.end(), [&](const Queja& otra) {
            return otra.numero == queja.numero && otra.indice == queja.indice;
        });
        if (igual == quejas.end()) {
            quejas.push_back(std::move(queja));
        } else {
            ++igual->veces;
        }
    }
}

std::string Mensaje(const Queja& queja, const std::string& tabla) {
    std::string mensaje = tabla.empty() ? "Database error" : "Table error: table '" + tabla + "'";
    if (queja.numero == HallazgoMotor::kIndice) {
        mensaje +=
            ". Data row does not have a matching index row in the index '" + queja.indice + "'";
    } else if (queja.numero == HallazgoMotor::kValor) {
        mensaje += ". Column value is out of range for its data type";
    } else {
        mensaje += ". A page could not be processed";
    }
    mensaje += ": " + queja.primera;
    if (queja.veces > 1) mensaje += " (and " + std::to_string(queja.veces - 1) + " more)";
    return mensaje.ends_with('.') ? mensaje : mensaje + ".";
}

class RevisionMotor {
public:
    explicit RevisionMotor(BaseSqlite& base) : base_(base) {}

    Hecho Revisar() {
        QUIMO_TRY(const std::vector<Queja> todo, QuejasDe(""));
        if (todo.empty()) return Referencias();
        // Once more table by table: the whole check does not tell whose page it found.
        QUIMO_TRY(const std::vector<std::string> tablas, Tablas());
        for (const std::string& tabla : tablas) {
            QUIMO_TRY(const std::vector<Queja> suyas, QuejasDe(tabla));
            Agregar(suyas, tabla);
        }
        if (hallazgos_.empty()) Agregar(todo, "");
        return {};
    }

    std::vector<HallazgoMotor> Hallazgos() { return std::move(hallazgos_); }

private:
    /// Of one table and its indexes, or of the whole file.
    Resultado<std::vector<Queja>> QuejasDe(const std::string& tabla) {
        std::vector<Queja> quejas;
        const auto leidas = [&]() -> Hecho {
            QUIMO_TRY(
                Preparada revision,
                base_.Preparar(tabla.empty()
                                   ? "SELECT integrity_check FROM pragma_integrity_check"
                                   : "SELECT integrity_check FROM pragma_integrity_check(?1)"));
            if (!tabla.empty()) revision.Ligar(1, std::string_view(tabla));
            return base_.CadaFila(revision, [&]() -> Hecho {
                Juntar(revision.Texto(0), tabla, quejas);
                return {};
            });
        }();
        if (!leidas) {
            QUIMO_TRY_VOID(SiSePuedeSeguir(leidas.error()));
            Juntar(leidas.error().mensaje, tabla, quejas);
        }
        return quejas;
    }

    static Hecho SiSePuedeSeguir(const ErrorSql& error) {
        if (EsBaseOcupada(error) || EsSinMemoria(error)) return error;
        return {};
    }

    Resultado<std::vector<std::string>> Tablas() {
        std::vector<std::string> tablas;
        QUIMO_TRY(
            Preparada consulta,
            base_.Preparar("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"));
        QUIMO_TRY_VOID(base_.CadaFila(consulta, [&]() -> Hecho {
            tablas.push_back(consulta.Texto(0));
            return {};
        }));
        return tablas;
    }

    Hecho Referencias() {
        QUIMO_TRY(Preparada consulta,
                  base_.Preparar(
                      "SELECT c.\"table\",c.parent,COUNT(*),(SELECT group_concat(l.\"from\",', ') "
                      "FROM pragma_foreign_key_list(c.\"table\") l WHERE l.id=c.fkid) "
                      "FROM pragma_foreign_key_check c GROUP BY c.\"table\",c.fkid"));
        const auto leidas = base_.CadaFila(consulta, [&]() -> Hecho {
            const std::string tabla = consulta.Texto(0);
            hallazgos_.push_back({HallazgoMotor::kReferencia, tabla,
                                  "Table error: table '" + tabla + "', column '" +
                                      consulta.Texto(3) + "'. Rows that refer to none of table '" +
                                      consulta.Texto(1) +
                                      "': " + std::to_string(consulta.Entero(2)) + "."});
            return {};
        });
        if (leidas) return {};
        QUIMO_TRY_VOID(SiSePuedeSeguir(leidas.error()));
        hallazgos_.push_back({HallazgoMotor::kReferencia, "", leidas.error().mensaje});
        return {};
    }

    void Agregar(const std::vector<Queja>& quejas, const std::string& tabla) {
        for (const Queja& queja : quejas)
            hallazgos_.push_back({queja.numero, tabla, Mensaje(queja, tabla)});
    }

    BaseSqlite& base_;
    std::vector<HallazgoMotor> hallazgos_;
};

}  // namespace

Resultado<std::vector<HallazgoMotor>> RevisarMotor(BaseSqlite& base) {
    RevisionMotor revision(base);
    QUIMO_TRY_VOID(revision.Revisar());
    return revision.Hallazgos();
}

}  // namespace quimo::data::embebido
