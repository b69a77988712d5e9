#include "restaurante_prueba.h"

#include <algorithm>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "data/consultar.h"
#include "data/esquema.h"
#include "data/valores.h"
#include "dayclose/cierre/resumen_cierre.h"
#include "foundation/conector.h"
#include "jet/volcado.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose::pruebas {

namespace {

const QString kDatos = QStringLiteral(QUIMO_TEST_DATA);

/// The keys of the sales tables, by which their rows are ordered.
const QVector<std::pair<QString, QString>> kTablas = {
    {u"Comanda"_s, u"ID_Comanda"_s},
    {u"Cuenta"_s, u"ID_Comanda,Num_Cuenta"_s},
    {u"ProductosXCuenta"_s, u"ID_ProductosXCuenta"_s},
    {u"Cortesia"_s, u"ID_ProductosXCuenta,ID_Tipo_Cortesia"_s},
    {u"Modificador"_s, u"ID_ProductosXCuenta,ID_Tipo_Modificador"_s},
    {u"ImpuestosXCuenta"_s, u"ID_ProductosXCuenta,ID_Tipo_Impuesto"_s},
    {u"Pago"_s, u"ID_Pago"_s}};

/// A value in the form of the recorded JSON: numbers without trailing zeros, flags as 1 and 0.
QString Normal(const QJsonValue& valor) {
    if (valor.isNull() || valor.isUndefined()) return u"NULL"_s;
    if (valor.isBool()) return valor.toBool() ? u"1"_s : u"0"_s;
    if (valor.isDouble()) return QString::number(valor.toDouble(), 'g', 15);
    QString texto = valor.toString();
    const auto numero = base::Decimal::DeTexto(texto.toStdString());
    if (!numero || !texto.contains(u'.')) return texto;
    while (texto.endsWith(u'0'))
        texto.chop(1);
    if (texto.endsWith(u'.')) texto.chop(1);
    return texto;
}

QJsonValue AJson(const QVariant& valor) {
    if (!valor.isValid()) return QJsonValue::Null;
    switch (valor.metaType().id()) {
        case QMetaType::Bool:
            return valor.toBool();
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::Double:
            return valor.toDouble();
        case QMetaType::QDateTime:
            return valor.toDateTime().toString(u"yyyy-MM-ddTHH:mm:ss"_s);
        default:
            return data::TextoDeValor(valor);
    }
}

/// The central database before the close, made once.
QString CentralDeAntes() {
    static const QTemporaryDir kCarpeta;
    static const QString kArchivo = [] {
        QString archivo = kCarpeta.filePath(u"antes.db"_s);
        const quimo::pruebas::RelojFijo reloj;
        QFile datos(kDatos + u"/day-golden/central-before.sql"_s);
        EXPECT_TRUE(datos.open(QIODevice::ReadOnly));
        auto conexion = foundation::CrearConector(
            reloj, foundation::SiFalta::Crear)({u"embebido"_s, archivo, {}, {}});
        EXPECT_TRUE(conexion);
        const auto creada = data::CrearBase(**conexion, QString::fromUtf8(datos.readAll()));
        EXPECT_TRUE(creada) << creada.error().Descripcion().toStdString();
        return archivo;
    }();
    return kArchivo;
}

QString Renglon(const QJsonObject& fila) {
    QStringList partes;
    for (auto it = fila.begin(); it != fila.end(); ++it) {
        partes << it.key().toLower() + u'=' + Normal(it.value());
    }
    return partes.join(u'|');
}

QStringList Renglones(const QJsonArray& filas) {
    QStringList textos;
    for (const auto& fila : filas)
        textos << Renglon(fila.toObject());
    std::sort(textos.begin(), textos.end());
    return textos;
}

}  // namespace

std::optional<FalloArchivo> ShareConFallas::Falla(Operacion operacion, const QString& remoto) {
    ++operaciones_;
    const int numero = plan_ ? plan_(operacion, remoto) : 0;
    if (numero == 0) return std::nullopt;
    return FalloDeNumero(numero, remoto);
}

ResultadoArchivo<bool> ShareConFallas::Existe(const QString& remoto) {
    if (auto falla = Falla(Operacion::Existe, remoto)) return *falla;
    return real_.Existe(remoto);
}

ResultadoArchivo<Copiado> ShareConFallas::Traer(const QString& remoto, const QString& local) {
    if (auto falla = Falla(Operacion::Traer, remoto)) return *falla;
    return real_.Traer(remoto, local);
}

ResultadoArchivo<void> ShareConFallas::Llevar(const QString& local, const QString& remoto,
                                              const QString& esperado) {
    auto falla = Falla(Operacion::Llevar, remoto);
    real_.antes_de_reemplazar = antes_de_reemplazar;
    if (falla && falla->numero > kDespues) {
        QUIMO_TRY_VOID(real_.Llevar(local, remoto, esperado));
        return FalloDeNumero(falla->numero - kDespues, remoto);
    }
    if (falla) return *falla;
    return real_.Llevar(local, remoto, esperado);
}

Restaurante::Restaurante() : share(carpeta_.filePath(u"red"_s)) {
    EXPECT_TRUE(QDir().mkpath(Programa()));
    EXPECT_TRUE(
        QFile::copy(kDatos + u"/terminals/Plantilla.mdb"_s, Programa() + u"/Plantilla.mdb"_s));
    for (const QString& nombre : {u"CAJA1"_s, u"CAJA2"_s, u"BARRA"_s}) {
        const QString destino = Terminal(nombre);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(destino).path()));
        EXPECT_TRUE(
            QFile::copy(kDatos + u"/terminals/"_s + nombre + u"/Quimo_Terminal.mdb"_s, destino));
        QFile(destino).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }
    EXPECT_TRUE(QFile::copy(CentralDeAntes(), ArchivoCentral()));
    opciones.pausa_ms = 0;
    opciones.quien = u"gerente en SERVIDOR"_s;
    Reconectar();
    // Which the recorded day left empty.
    Mandar(
        u"INSERT INTO Control_Paquetes (ID_ProductosXCuenta,ID_Seccion_Paquete,ID_Producto,Cantidad) VALUES (11,1,101,2)"_s);
}

QString Restaurante::Terminal(const QString& nombre) const {
    return raiz_ + u"/red/"_s + nombre + u"/quimo/Quimo_Terminal.mdb"_s;
}

void Restaurante::Reconectar() {
    ado_.reset();
    foundation::OpcionesBitacora de_bitacora;
    de_bitacora.PArchivoLog = raiz_ + u"/QUIMO.log"_s;
    de_bitacora.PMsgBox = false;
    bitacora_ = std::make_unique<foundation::ClsBitacora>(de_bitacora, dialogos, reloj);
    data::Conector conector = foundation::CrearConector(reloj);
    if (cinta) conector = quimo::pruebas::ConEspia(std::move(conector), cinta);
    ado_ = std::make_unique<foundation::ClsAdo>(std::move(conector), dialogos, *bitacora_);
    QString servidor = u"embebido"_s;
    QString base = ArchivoCentral();
    QString usuario;
    QString clave;
    EXPECT_TRUE(ado_->Conectar(servidor, base, usuario, clave));
}

QVector<data::Fila> Restaurante::Filas(const QString& consulta) {
    auto filas = data::Consultar(ado_->Conexion(), consulta);
    EXPECT_TRUE(filas) << consulta.toStdString() << ": "
                       << filas.error().Descripcion().toStdString();
    return filas ? *filas : QVector<data::Fila>();
}

QString Restaurante::Valor(const QString& consulta) {
    const QVector<data::Fila> filas = Filas(consulta);
    return filas.isEmpty() ? QString() : data::TextoDeValor(filas.first().value(0));
}

void Restaurante::Mandar(const QString& sentencia) {
    const auto respuesta = ado_->Conexion().Ejecutar(sentencia);
    EXPECT_FALSE(respuesta.fallo) << sentencia.toStdString();
}

FinDeDia::Desenlace Restaurante::Cerrar() {
    FinDeDia proceso(*ado_, share, reloj, Programa(), opciones);
    const FinDeDia::Desenlace desenlace = proceso.Ejecutar();
    resumen_ = proceso.Resumen();
    return desenlace;
}

void Restaurante::Usar(const Restaurante& otro) {
    raiz_ = otro.raiz_;
    Reconectar();
}

TrabajoTerminal Restaurante::Trabajo() {
    return TrabajoTerminal(*ado_, share, reloj, Programa(), opciones);
}

QString Restaurante::EnArchivo(const QString& terminal, int version) const {
    return Programa() + u"/archivo/14112026/%1/Quimo_Terminal-%2.mdb"_s.arg(terminal).arg(version);
}

QStringList Restaurante::Archivados(const QString& terminal) const {
    return QDir(Programa() + u"/archivo/14112026/"_s + terminal)
        .entryList({u"*.mdb"_s}, QDir::Files, QDir::Name);
}

QByteArray Bytes(const QString& ruta) {
    QFile archivo(ruta);
    EXPECT_TRUE(archivo.open(QIODevice::ReadOnly)) << ruta.toStdString();
    return archivo.readAll();
}

void PonerBytes(const QString& ruta, const QByteArray& bytes) {
    QFile archivo(ruta);
    ASSERT_TRUE(archivo.open(QIODevice::WriteOnly)) << ruta.toStdString();
    ASSERT_EQ(archivo.write(bytes), bytes.size());
}

void EsperarDiaCerrado(Restaurante& restaurante) {
    EXPECT_EQ(DiferenciasCentrales(restaurante), QStringList());
    for (const QString& nombre : {u"CAJA1"_s, u"CAJA2"_s, u"BARRA"_s}) {
        EXPECT_EQ(DiferenciasDeTerminal(restaurante.Terminal(nombre), nombre), QStringList());
        EXPECT_FALSE(
            QFile::exists(restaurante.Programa() + u'/' + nombre + u"/Quimo_Terminal.mdb"_s));
    }
    const auto parametro = [&](const QString& clave, const QString& columna) {
        return restaurante.Valor(u"SELECT "_s + columna +
                                 u" FROM Parametros WHERE ID_Parametro='"_s + clave + u'\'');
    };
    EXPECT_EQ(parametro(u"FECHA_TRABAJO"_s, u"Valor_Cad"_s), u"15112026"_s);
    EXPECT_EQ(parametro(u"FOLIOPAGO"_s, u"Valor_Num"_s).toDouble(), 94591);
    EXPECT_EQ(parametro(u"FOLIOCOMANDA"_s, u"Valor_Num"_s).toDouble(), 51171);
    for (const QString& cola : {u"Transacciones"_s, u"TransaccionesXTerminal"_s,
                                u"Control_Paquetes"_s, u"Cierre_Pendiente"_s, u"Cierre_Avance"_s}) {
        EXPECT_EQ(restaurante.Valor(u"SELECT COUNT(*) FROM "_s + cola), u"0"_s)
            << cola.toStdString();
    }
}

QJsonObject LeerJson(const QString& ruta) {
    QFile archivo(ruta);
    EXPECT_TRUE(archivo.open(QIODevice::ReadOnly)) << ruta.toStdString();
    return QJsonDocument::fromJson(archivo.readAll()).object();
}

QStringList DiferenciasDeTerminal(const QString& archivo, const QString& nombre) {
    const auto base = jet::BaseDatos::Abrir(archivo.toStdString());
    if (!base) return {QString::fromStdString(base.error().mensaje)};
    QByteArray volcado;
    const auto hecho = jet::VolcarBase(*base, [&](std::string_view trozo) {
        volcado.append(trozo.data(), static_cast<qsizetype>(trozo.size()));
        return true;
    });
    if (!hecho) return {QString::fromStdString(hecho.error().mensaje)};
    QHash<QString, QJsonArray> tablas;
    const QJsonObject real = QJsonDocument::fromJson(volcado).object();
    for (auto it = real.begin(); it != real.end(); ++it) {
        tablas.insert(it.key().toLower(), it.value().toArray());
    }
    const QJsonObject esperado =
        LeerJson(kDatos + u"/day-golden/terminal-after/"_s + nombre + u".json"_s);
    QStringList diferencias;
    for (auto it = esperado.begin(); it != esperado.end(); ++it) {
        const QStringList quiero = Renglones(it.value().toArray());
        const QStringList hay = Renglones(tablas.value(it.key().toLower()));
        if (quiero == hay) continue;
        diferencias << nombre + u'.' + it.key() + u": "_s + hay.value(0) + u" por "_s +
                           quiero.value(0);
    }
    return diferencias;
}

QStringList DiferenciasCentrales(Restaurante& restaurante) {
    const QJsonObject esperado = LeerJson(kDatos + u"/day-golden/central-after.json"_s);
    QStringList diferencias;
    for (const auto& [tabla, llave] : kTablas) {
        const QJsonArray filas = esperado[tabla].toArray();
        const QStringList columnas = filas.first().toObject().keys();
        const QVector<data::Fila> reales =
            restaurante.Filas(u"SELECT "_s + columnas.join(u',') + u" FROM "_s + tabla);
        QJsonArray hay;
        for (const data::Fila& fila : reales) {
            QJsonObject objeto;
            for (qsizetype c = 0; c < columnas.size(); ++c) {
                objeto.insert(columnas[c], AJson(fila[c]));
            }
            hay.append(objeto);
        }
        const QStringList uno = Renglones(filas);
        const QStringList otro = Renglones(hay);
        if (uno.size() != otro.size()) {
            diferencias << u"%1: %2 filas por %3"_s.arg(tabla).arg(otro.size()).arg(uno.size());
        }
        for (qsizetype i = 0; i < std::min(uno.size(), otro.size()); ++i) {
            if (uno[i] != otro[i]) diferencias << tabla + u": "_s + otro[i] + u" por "_s + uno[i];
        }
    }
    return diferencias.mid(0, 5);
}

QStringList Ventas(Restaurante& restaurante) {
    QStringList textos;
    for (const auto& [tabla, llave] : kTablas) {
        for (const data::Fila& fila :
             restaurante.Filas(u"SELECT * FROM "_s + tabla + u" ORDER BY "_s + llave)) {
            QStringList celdas = {tabla};
            for (const QVariant& valor : fila)
                celdas << data::LiteralSql(valor);
            textos << celdas.join(u'|');
        }
    }
    return textos;
}

QStringList Nuevas(const QStringList& despues, const QStringList& antes) {
    QStringList nuevas;
    for (const QString& fila : despues) {
        if (!antes.contains(fila)) nuevas << fila;
    }
    return nuevas;
}

const QStringList& VentasDelDia() {
    static const QStringList kVentas = [] {
        Restaurante restaurante;
        EXPECT_EQ(restaurante.Cerrar(), FinDeDia::Desenlace::Terminado);
        return Ventas(restaurante);
    }();
    return kVentas;
}

void EsperarVendida(Restaurante& restaurante, const Venta& venta) {
    const QStringList nuevas = Nuevas(Ventas(restaurante), VentasDelDia());
    EXPECT_EQ(Nuevas(VentasDelDia(), Ventas(restaurante)), QStringList());
    ASSERT_EQ(nuevas.size(), 4) << nuevas.join(u'\n').toStdString();
    EXPECT_TRUE(nuevas[0].contains(QString::number(venta.orden))) << nuevas[0].toStdString();
    EXPECT_TRUE(nuevas[0].contains(venta.fecha)) << nuevas[0].toStdString();
    EXPECT_TRUE(nuevas.join(u'\n').contains(QString::number(venta.articulo)));
    EXPECT_TRUE(nuevas.join(u'\n').contains(QString::number(venta.pago)));
}

QString OrdenesEn(const QString& archivo) {
    const auto base = jet::BaseDatos::Abrir(archivo.toStdString());
    if (!base) return QString::fromStdString(base.error().mensaje);
    const auto tabla = base->AbrirTabla("Comanda");
    return tabla ? QString::number(*tabla->Cuantas()) : QString();
}

QString LineasFaltantes(const ResumenCierre& resumen) {
    const TextoResumen texto = RedactarResumen(resumen);
    return (texto.sin_copiar + texto.sin_entregar + texto.faltantes).join(u'\n');
}

}  // namespace quimo::dayclose::pruebas
