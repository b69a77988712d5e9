#include "dayclose/cierre/colisiones.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <tuple>
#include <vector>

#include <QHash>
#include <QMap>
#include <QStringList>

#include "dayclose/cierre/clave_entera.h"
#include "dayclose/terminales/archivos.h"
#include "dayclose/terminales/base_terminal.h"
#include "dayclose/terminales/nombres_ventas.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

constexpr qsizetype kMuestras = 3;
constexpr qsizetype kColumnasMostradas = 3;
constexpr qsizetype kFechasMostradas = 5;

/// One row in little room: its key, a digest of what would be copied, and whose it is.
struct Anotado {
    quint64 clave = 0;
    quint64 contenido = 0;
    qint32 terminal = 0;
    bool operator<(const Anotado& otro) const {
        return std::tie(clave, terminal) < std::tie(otro.clave, otro.terminal);
    }
};

/// How many rows, and the keys of the first of them.
struct Muestra {
    qint64 cuantas = 0;
    QVector<quint64> claves;

    void Agregar(quint64 clave) {
        ++cuantas;
        if (claves.size() < kMuestras) claves.append(clave);
    }
};

/// By which columns a row names the row of another table that it belongs to.
struct Parentesco {
    const char16_t* tabla = nullptr;
    const char16_t* madre = nullptr;
    const char16_t* que = nullptr;
    const char16_t* columnas[2];
};

constexpr Parentesco kParentescos[] = {
    {u"Cuenta", u"Comanda", u"orden", {u"ID_Comanda", nullptr}},
    {u"ProductosXCuenta", u"Cuenta", u"cuenta", {u"ID_Comanda", u"Num_Cuenta"}},
    {u"Cortesia", u"ProductosXCuenta", u"artículo", {u"ID_ProductosXCuenta", nullptr}},
    {u"ImpuestosXCuenta", u"ProductosXCuenta", u"artículo", {u"ID_ProductosXCuenta", nullptr}},
    {u"Modificador", u"ProductosXCuenta", u"artículo", {u"ID_ProductosXCuenta", nullptr}},
    {u"Pago", u"Cuenta", u"cuenta", {u"ID_comanda", u"Num_Cuenta"}},
};

bool Igual(const char16_t* uno, const char16_t* otro) {
    return QStringView(uno).compare(QStringView(otro), Qt::CaseInsensitive) == 0;
}

const Parentesco* ParentescoDe(const char16_t* tabla) {
    for (const Parentesco& parentesco : kParentescos) {
        if (Igual(parentesco.tabla, tabla)) return &parentesco;
    }
    return nullptr;
}

/// The place of a column among those that an insert writes, which is how rows are asked.
std::optional<std::size_t> LugarDe(const DefCopia& copia, const char16_t* columna) {
    for (std::size_t i = 0; i < copia.al_insertar.size(); ++i) {
        if (Igual(copia.al_insertar[i].columna, columna)) return i;
    }
    return std::nullopt;
}

template <typename Columnas>
std::vector<std::size_t> LugaresDe(const DefCopia& copia, const Columnas& columnas) {
    std::vector<std::size_t> lugares;
    for (const char16_t* columna : columnas) {
        const auto lugar = columna == nullptr ? std::nullopt : LugarDe(copia, columna);
        if (lugar) lugares.push_back(*lugar);
    }
    return lugares;
}

/// The whole number of a column, whatever its type is; nothing when it holds none.
std::optional<qint32> Entero(const BaseTerminal::Renglon& renglon, std::size_t lugar) {
    const auto* entero = std::get_if<std::int32_t>(&renglon.AlInsertar(lugar));
    if (entero != nullptr) return *entero;
    const auto literal = renglon.LiteralAlInsertar(lugar, Forma::Numero);
    bool es_entero = false;
    const qint32 numero = literal ? literal->toInt(&es_entero) : 0;
    return es_entero ? std::optional(numero) : std::nullopt;
}

/// The key that up to two columns are. Nothing when one of them holds no whole number.
std::optional<quint64> ClaveDe(const BaseTerminal::Renglon& renglon,
                               const std::vector<std::size_t>& lugares) {
    std::array<qint32, 2> partes = {};
    for (std::size_t i = 0; i < lugares.size(); ++i) {
        const auto parte = Entero(renglon, lugares[i]);
        if (!parte) return std::nullopt;
        partes[i] = *parte;
    }
    return UnirClave(partes[0], partes[1]);
}

ResultadoCierre<void> CadaRenglon(
    const BaseTerminal& base, const DefCopia& copia,
    const std::function<ResultadoCierre<void>(const BaseTerminal::Renglon&)>& visitar) {
    constexpr std::size_t kTanda = 256;
    return base.Recorrer(
        copia, kTanda, [&](std::span<const BaseTerminal::Renglon> tanda) -> ResultadoCierre<void> {
            for (const BaseTerminal::Renglon& renglon : tanda)
                QUIMO_TRY_VOID(visitar(renglon));
            return {};
        });
}

QString ClaveTexto(const DefCopia& copia, quint64 clave) {
    QStringList partes;
    for (std::size_t i = 0; i < copia.clave.size(); ++i) {
        partes << QString::fromUtf16(copia.clave[i]) + u'=' +
                      QString::number(ParteDeClave(clave, i));
    }
    return partes.join(u", "_s);
}

/// What an insert would write of one value, to the second where it is a time.
QString Contenido(const DefCopia& copia, const BaseTerminal::Renglon& renglon, std::size_t i) {
    const Forma forma = copia.al_insertar[i].forma;
    const bool es_fecha = forma == Forma::FechaMinutosDoble || forma == Forma::FechaMedianoche;
    const auto literal = renglon.LiteralAlInsertar(i, es_fecha ? Forma::FechaHora : forma);
    return literal ? *literal : u"un valor ilegible"_s;
}

QStringList Contenido(const DefCopia& copia, const BaseTerminal::Renglon& renglon) {
    QStringList literales;
    for (std::size_t i = 0; i < copia.al_insertar.size(); ++i)
        literales << Contenido(copia, renglon, i);
    return literales;
}

quint64 Mezclar(quint64 huella, quint64 dato) {
    huella = (huella ^ dato) * 0x9E3779B97F4A7C15;
    return huella ^ (huella >> 29);
}

/// Equal for values of which an insert would write the same. All rows of a day come by here: the
/// usual kinds are taken as they are, without writing them out.
quint64 HuellaDeValor(const DefCopia& copia, const BaseTerminal::Renglon& renglon, std::size_t i) {
    const jet::Valor& valor = renglon.AlInsertar(i);
    if (jet::EsNulo(valor)) return 1;
    if (const auto* entero = std::get_if<std::int32_t>(&valor)) {
        return Mezclar(2, static_cast<quint32>(*entero));
    }
    if (const auto* logico = std::get_if<bool>(&valor)) return Mezclar(2, *logico ? 1 : 0);
    if (const auto* dinero = std::get_if<base::Dinero>(&valor)) {
        return Mezclar(3, static_cast<quint64>(dinero->Diezmilesimas()));
    }
    if (const auto* texto = std::get_if<std::u16string>(&valor)) {
        return Mezclar(4, std::hash<std::u16string>()(*texto));
    }
    return Mezclar(5, std::hash<std::u16string>()(Contenido(copia, renglon, i).toStdU16String()));
}

quint64 Huella(const DefCopia& copia, const BaseTerminal::Renglon& renglon) {
    quint64 huella = 0;
    for (std::size_t i = 0; i < copia.al_insertar.size(); ++i)
        huella = Mezclar(huella, HuellaDeValor(copia, renglon, i));
    return huella;
}

/// "A, B, C y N más".
QString Lista(const QStringList& textos, qint64 cuantos) {
    const qint64 mas = cuantos - textos.size();
    return textos.join(u", "_s) + (mas > 0 ? u" y %1 más"_s.arg(mas) : QString());
}

/// The keys of a sample: "ID_Pago=5, ID_Pago=6, ID_Pago=7 y 2 más".
QString ClavesTexto(const DefCopia& copia, const Muestra& muestra) {
    QStringList claves;
    for (const quint64 clave : muestra.claves)
        claves << ClaveTexto(copia, clave);
    return Lista(claves, muestra.cuantas);
}

class Busqueda {
public:
    Busqueda(const QVector<ArchivoPorCotejar>& archivos, const QString& fecha_cierre)
        : archivos_(archivos), fecha_cierre_(fecha_cierre) {
        // In the order in which they are copied.
        std::sort(archivos_.begin(), archivos_.end(), [](const auto& a, const auto& b) {
            return std::pair(a.id, a.terminal) < std::pair(b.id, b.terminal);
        });
    }

    ResultadoCierre<QVector<HallazgoPrevio>> Buscar() {
        QUIMO_TRY_VOID(ArchivosIguales());
        for (const DefCopia& copia : Copias())
            QUIMO_TRY_VOID(LeerTabla(copia));
        ContarIguales();
        for (auto it = distintos_.cbegin(); it != distintos_.cend(); ++it)
            QUIMO_TRY_VOID(ContarDistintos(it->first, it->second));
        std::stable_sort(
            hallazgos_.begin(), hallazgos_.end(),
            [](const Hallado& a, const Hallado& b) { return a.terminal < b.terminal; });
        QVector<HallazgoPrevio> hallazgos;
        for (const Hallado& hallado : hallazgos_)
            hallazgos.append({Nombre(hallado.terminal), hallado.texto, hallado.se_pierde});
        return hallazgos;
    }

private:
    struct Hallado {
        int terminal;
        QString texto;
        bool se_pierde;
    };
    using Par = std::tuple<const DefCopia*, int, int>;  // table, earlier and later terminal

    QString Nombre(int terminal) const { return archivos_[terminal].terminal; }
    enum class Perdida { No, Si };
    void Anotar(int terminal, const QString& texto, Perdida perdida = Perdida::No) {
        hallazgos_.append({terminal, texto, perdida == Perdida::Si});
    }

    ResultadoCierre<BaseTerminal> Abrir(int terminal) const {
        return BaseTerminal::Abrir(archivos_[terminal].ruta, Nombre(terminal));
    }

    ResultadoCierre<void> ArchivosIguales();
    ResultadoCierre<void> LeerTabla(const DefCopia& copia);
    ResultadoCierre<void> LeerDeTerminal(const DefCopia& copia, int terminal);
    void Cotejar(const DefCopia& copia);
    void ContarFechas(int terminal, const QMap<QString, qint64>& fechas);
    void ContarPrefijos(const DefCopia& copia, int terminal, const Muestra& muestra);
    void ContarHuerfanas(const DefCopia& copia, int terminal, const Muestra& muestra);
    void ContarIguales();
    ResultadoCierre<void> ContarDistintos(const Par& par, const Muestra& muestra);
    ResultadoCierre<QHash<quint64, QStringList>> Renglones(const DefCopia& copia, int terminal,
                                                           const Muestra& muestra) const;

    QVector<ArchivoPorCotejar> archivos_;
    const QString& fecha_cierre_;
    QVector<bool> repetida_;         ///< the same file as an earlier terminal: not read again
    std::vector<Anotado> anotados_;  ///< of the table at hand, all terminals
    QHash<QString, std::vector<quint64>> claves_;  ///< sorted, of the tables that others name
    std::map<Par, Muestra> distintos_;
    std::map<std::pair<int, int>, QMap<QString, qint64>> iguales_;
    QVector<Hallado> hallazgos_;
};

ResultadoCierre<void> Busqueda::ArchivosIguales() {
    QHash<QString, int> vistos;
    repetida_.resize(archivos_.size());
    if (archivos_.size() < 2) return {};
    for (int t = 0; t < archivos_.size(); ++t) {
        QString sha256 = archivos_[t].sha256;
        if (sha256.isEmpty()) {
            QUIMO_TRY(sha256, Sha256DeArchivo(archivos_[t].ruta));
        }
        if (!vistos.contains(sha256)) {
            vistos.insert(sha256, t);
            continue;
        }
        repetida_[t] = true;
        Anotar(t,
               u"%1 y %2 tienen el mismo archivo, byte por byte: las ventas de una de las dos "
               u"faltan."_s.arg(Nombre(vistos[sha256]), Nombre(t)),
               Perdida::Si);
    }
    return {};
}

ResultadoCierre<void> Busqueda::LeerTabla(const DefCopia& copia) {
    anotados_.clear();
    for (int t = 0; t < archivos_.size(); ++t) {
        if (!repetida_[t]) QUIMO_TRY_VOID(LeerDeTerminal(copia, t));
    }
    std::sort(anotados_.begin(), anotados_.end());
    Cotejar(copia);
    const bool es_madre = std::any_of(
        std::begin(kParentescos), std::end(kParentescos),
        [&](const Parentesco& parentesco) { return Igual(parentesco.madre, copia.tabla); });
    if (!es_madre) return {};
    std::vector<quint64>& claves = claves_[QString::fromUtf16(copia.tabla)];
    claves.reserve(anotados_.size());
    for (const Anotado& anotado : anotados_)
        claves.push_back(anotado.clave);
    return {};
}

ResultadoCierre<void> Busqueda::LeerDeTerminal(const DefCopia& copia, int terminal) {
    const Parentesco* parentesco = ParentescoDe(copia.tabla);
    const std::vector<quint64>* madres = nullptr;
    std::vector<std::size_t> columnas_madre;
    if (parentesco != nullptr) {
        madres = &claves_[QString::fromUtf16(parentesco->madre)];
        columnas_madre = LugaresDe(copia, parentesco->columnas);
    }
    const std::vector<std::size_t> columnas_clave = LugaresDe(copia, copia.clave);
    const auto fecha = LugarDe(copia, u"Fecha_Trabajo");
    const bool con_prefijo = Igual(copia.tabla, u"ProductosXCuenta");
    const QString prefijo = QString::number(archivos_[terminal].id);
    QMap<QString, qint64> fechas;
    Muestra sin_prefijo;
    Muestra huerfanas;
    QUIMO_TRY(const BaseTerminal base, Abrir(terminal));
    QUIMO_TRY_VOID(CadaRenglon(
        base, copia, [&](const BaseTerminal::Renglon& renglon) -> ResultadoCierre<void> {
            if (fecha) {
                const auto literal = renglon.LiteralAlInsertar(*fecha);
                const QString dia = literal ? LeerLiteral(*literal).texto : QString();
                if (dia != fecha_cierre_) ++fechas[dia];
            }
            const auto clave = ClaveDe(renglon, columnas_clave);
            // Without a key no other row has the same one; the copy itself will refuse it.
            if (!clave) return {};
            anotados_.push_back({*clave, Huella(copia, renglon), terminal});
            if (con_prefijo && !QString::number(ParteDeClave(*clave, 0)).startsWith(prefijo)) {
                sin_prefijo.Agregar(*clave);
            }
            if (madres == nullptr) return {};
            const auto madre = ClaveDe(renglon, columnas_madre);
            if (!madre || !std::binary_search(madres->begin(), madres->end(), *madre)) {
                huerfanas.Agregar(*clave);
            }
            return {};
        }));
    ContarFechas(terminal, fechas);
    ContarPrefijos(copia, terminal, sin_prefijo);
    ContarHuerfanas(copia, terminal, huerfanas);
    return {};
}

/// Goes through the sorted rows and looks at those that have a key in common. Of more than two each
/// is held against the one before it, which it is copied over.
void Busqueda::Cotejar(const DefCopia& copia) {
    for (std::size_t i = 1; i < anotados_.size(); ++i) {
        const Anotado& uno = anotados_[i - 1];
        const Anotado& otro = anotados_[i];
        if (uno.clave != otro.clave) continue;
        if (uno.contenido != otro.contenido) {
            distintos_[{&copia, uno.terminal, otro.terminal}].Agregar(uno.clave);
        } else {
            ++iguales_[{uno.terminal, otro.terminal}][QString::fromUtf16(copia.tabla)];
        }
    }
}

void Busqueda::ContarFechas(int terminal, const QMap<QString, qint64>& fechas) {
    if (fechas.isEmpty()) return;
    QStringList partes;
    qint64 total = 0;
    for (auto it = fechas.cbegin(); it != fechas.cend(); ++it) {
        total += it.value();
        if (partes.size() >= kFechasMostradas) continue;
        const QString dia = it.key().isEmpty() ? u"sin fecha"_s : FechaTrabajoMostrada(it.key());
        partes << u"%1 (%2)"_s.arg(dia, QString::number(it.value()));
    }
    Anotar(terminal, u"%1 tiene %2 con fecha de trabajo distinta de %3: %4"_s.arg(
                         Nombre(terminal), RenglonesContados(total, u"Comanda"_s),
                         FechaTrabajoMostrada(fecha_cierre_), Lista(partes, fechas.size())));
}

void Busqueda::ContarPrefijos(const DefCopia& copia, int terminal, const Muestra& muestra) {
    if (muestra.cuantas == 0) return;
    Anotar(terminal,
           u"%1 es la terminal %2, y su archivo tiene %3 cuyo número no empieza con %2: %4\n"
           u"Puede ser el archivo de otra terminal."_s.arg(
               Nombre(terminal), QString::number(archivos_[terminal].id),
               RenglonesContados(muestra.cuantas, QString::fromUtf16(copia.tabla)),
               ClavesTexto(copia, muestra)));
}

void Busqueda::ContarHuerfanas(const DefCopia& copia, int terminal, const Muestra& muestra) {
    if (muestra.cuantas == 0) return;
    const QString tabla = QString::fromUtf16(copia.tabla);
    Anotar(terminal,
           u"%1 tiene %2 (tabla %3) sin su %4, que no está en ninguna terminal: %5"_s.arg(
               Nombre(terminal), RenglonesContados(muestra.cuantas, tabla), tabla,
               QString::fromUtf16(ParentescoDe(copia.tabla)->que), ClavesTexto(copia, muestra)));
}

void Busqueda::ContarIguales() {
    for (const auto& [pareja, por_tabla] : iguales_) {
        const auto [uno, otro] = pareja;
        QStringList partes;
        for (const DefCopia& copia : Copias()) {
            const QString tabla = QString::fromUtf16(copia.tabla);
            const qint64 cuantos = por_tabla.value(tabla);
            if (cuantos > 0) partes << RenglonesContados(cuantos, tabla);
        }
        Anotar(otro, uno == otro ? u"%1 tiene dos veces los mismos renglones: %2."_s.arg(
                                       Nombre(uno), partes.join(u", "_s))
                                 : u"%1 y %2 tienen los mismos renglones: %3."_s.arg(
                                       Nombre(uno), Nombre(otro), partes.join(u", "_s)));
    }
}

/// The rows of a sample, as they stand in one terminal's file.
ResultadoCierre<QHash<quint64, QStringList>> Busqueda::Renglones(const DefCopia& copia,
                                                                 int terminal,
                                                                 const Muestra& muestra) const {
    QHash<quint64, QStringList> renglones;
    const std::vector<std::size_t> columnas_clave = LugaresDe(copia, copia.clave);
    QUIMO_TRY(const BaseTerminal base, Abrir(terminal));
    QUIMO_TRY_VOID(CadaRenglon(base, copia,
                               [&](const BaseTerminal::Renglon& renglon) -> ResultadoCierre<void> {
                                   const auto clave = ClaveDe(renglon, columnas_clave);
                                   if (clave && muestra.claves.contains(*clave)) {
                                       renglones.insert(*clave, Contenido(copia, renglon));
                                   }
                                   return {};
                               }));
    return renglones;
}

ResultadoCierre<void> Busqueda::ContarDistintos(const Par& par, const Muestra& muestra) {
    const auto [copia, uno, otro] = par;
    const QString tabla = QString::fromUtf16(copia->tabla);
    if (uno == otro) {
        Anotar(uno,
               u"%1 tiene %2 (tabla %3) con una clave que se repite en su archivo: %4"_s.arg(
                   Nombre(uno), RenglonesContados(muestra.cuantas, tabla), tabla,
                   ClavesTexto(*copia, muestra)),
               Perdida::Si);
        return {};
    }
    QUIMO_TRY(const auto de_uno, Renglones(*copia, uno, muestra));
    QUIMO_TRY(const auto de_otro, Renglones(*copia, otro, muestra));
    QStringList lineas = {
        u"%1 y %2 tienen %3 (tabla %4) con la misma clave y distinto contenido:"_s.arg(
            Nombre(uno), Nombre(otro), RenglonesContados(muestra.cuantas, tabla), tabla)};
    for (const quint64 clave : muestra.claves) {
        const QStringList aqui = de_uno.value(clave);
        const QStringList alla = de_otro.value(clave);
        QStringList diferencias;
        qint64 cuantas = 0;
        for (qsizetype c = 0; c < std::min(aqui.size(), alla.size()); ++c) {
            if (aqui[c] == alla[c]) continue;
            if (++cuantas > kColumnasMostradas) continue;
            const CampoCopia& campo = copia->al_insertar[static_cast<std::size_t>(c)];
            diferencias << u"%1 %2 en %3 y %4 en %5"_s.arg(QString::fromUtf16(campo.columna),
                                                           LiteralVisible(aqui[c]), Nombre(uno),
                                                           LiteralVisible(alla[c]), Nombre(otro));
        }
        lineas << u"  %1: %2"_s.arg(ClaveTexto(*copia, clave), Lista(diferencias, cuantas));
    }
    const qint64 mas = muestra.cuantas - muestra.claves.size();
    if (mas > 0) lineas << u"  y %1 más"_s.arg(mas);
    lineas << u"Al copiar queda lo de %1."_s.arg(Nombre(otro));
    Anotar(otro, lineas.join(u'\n'), Perdida::Si);
    return {};
}

}  // namespace

ResultadoCierre<QVector<HallazgoPrevio>> BuscarColisiones(
    const QVector<ArchivoPorCotejar>& archivos, const QString& fecha_cierre) {
    return Busqueda(archivos, fecha_cierre).Buscar();
}

}  // namespace quimo::dayclose
