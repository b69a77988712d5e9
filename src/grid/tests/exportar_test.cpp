#include "grid/exportar.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QVector>

#include "base/decimal.h"
#include "base/dinero.h"

using namespace Qt::StringLiterals;

namespace quimo::grid {
namespace {

/// Reads both files with other means than ours: the csv module, and the workbook's own XML.
constexpr char kLector[] = R"py(
import csv, json, re, sys, zipfile
import xml.etree.ElementTree as ET
n = {'m': 'http://schemas.openxmlformats.org/spreadsheetml/2006/main'}
raw = open(sys.argv[1], 'rb').read()
assert raw.startswith(b'\xef\xbb\xbf'), 'no byte order mark'
filas_csv = list(csv.reader(raw.decode('utf-8-sig').splitlines(keepends=True), strict=True))
z = zipfile.ZipFile(sys.argv[2])
assert z.testzip() is None
desc = lambda t: re.sub('_x([0-9A-Fa-f]{4})_', lambda m: chr(int(m[1], 16)), t)
textos = [desc(''.join(t.text or '' for t in s.iter('{%s}t' % n['m'])))
          for s in ET.fromstring(z.read('xl/sharedStrings.xml')).findall('m:si', n)]
estilos = ET.fromstring(z.read('xl/styles.xml'))
formatos = {f.get('numFmtId'): f.get('formatCode') for f in estilos.findall('m:numFmts/m:numFmt', n)}
letras = [(f.find('m:b', n) is not None, float(f.find('m:sz', n).get('val')))
          for f in estilos.findall('m:fonts/m:font', n)]
xfs = estilos.findall('m:cellXfs/m:xf', n)
hoja = ET.fromstring(z.read('xl/worksheets/sheet1.xml'))
celdas = {}
for c in hoja.iter('{%s}c' % n['m']):
    xf = xfs[int(c.get('s', 0))]
    v = c.find('m:v', n).text
    tipo = c.get('t', 'n')
    celdas[c.get('r')] = [tipo, textos[int(v)] if tipo == 's' else float(v),
                          formatos.get(xf.get('numFmtId'), ''), *letras[int(xf.get('fontId'))]]
assert not list(hoja.iter('{%s}f' % n['m'])), 'a formula'
json.dump({'csv': filas_csv, 'xlsx': celdas,
           'fijas': int(next(hoja.iter('{%s}pane' % n['m'])).get('ySplit')),
           'anchos': [float(c.get('width')) for c in hoja.findall('m:cols/m:col', n)]}, sys.stdout)
)py";

using base::Decimal;
using base::Dinero;

Celda Texto(const QString& texto) { return {.texto = texto, .plano = texto, .valor = texto}; }
Celda Titulo(const QString& texto, int puntos = 0) {
    Celda celda = Texto(texto);
    celda.negrita = true;
    celda.puntos = puntos;
    return celda;
}
Celda Entero(int valor) {
    const QString texto = QString::number(valor);
    return {.texto = texto, .plano = texto, .valor = valor, .tipo = TipoCelda::Entero};
}
Celda Moneda(qint64 diezmilesimas, const QString& texto, const QString& plano) {
    return {.texto = texto,
            .plano = plano,
            .valor = QVariant::fromValue(Dinero::DeDiezmilesimas(diezmilesimas)),
            .tipo = TipoCelda::Moneda};
}
Celda Numero(const char* cifras) {
    return {.texto = QString::fromLatin1(cifras),
            .plano = QString::fromLatin1(cifras),
            .valor = QVariant::fromValue(*Decimal::DeTexto(cifras)),
            .tipo = TipoCelda::Numero};
}
Celda Fecha(const QString& texto, const QDate& dia, const QTime& hora) {
    return {.texto = texto,
            .plano = texto,
            .valor = QDateTime(dia, hora, Qt::UTC),
            .tipo = TipoCelda::Fecha};
}
Celda Casilla(bool valor) {
    const QString texto = valor ? u"Sí"_s : u"No"_s;
    return {.texto = texto, .plano = texto, .valor = valor, .tipo = TipoCelda::Casilla};
}

/// Cells that are held as they are.
class RejillaPrueba final : public Rejilla {
public:
    RejillaPrueba(const QVector<QVector<Celda>>& filas, qsizetype titulos)
        : filas_(filas), titulos_(titulos) {}
    QString Nombre() const override { return u"Prueba"_s; }
    qsizetype Filas() const override { return filas_.size(); }
    qsizetype Columnas() const override { return filas_.last().size(); }
    qsizetype FilasDeTitulos() const override { return titulos_; }
    Celda En(qsizetype fila, qsizetype columna) const override {
        return filas_[fila].value(columna);
    }

private:
    QVector<QVector<Celda>> filas_;
    qsizetype titulos_;
};

class ExportarTest : public testing::Test {
protected:
    static RejillaPrueba Tabla() {
        QVector<Celda> titulos;
        for (const QString& titulo :
             {u"Clave"_s, u"Descripción"_s, u"Precio"_s, u"Alta"_s, u"Activo"_s, u"=n"_s})
            titulos << Titulo(titulo);
        return {
            {titulos,
             {Entero(-7), Texto(u"=SUM(A1:A9)"_s), Moneda(12345000, u"$1,234.50"_s, u"1234.50"_s),
              Fecha(u"14/11/2026"_s, {2026, 11, 14}, {0, 0}), Casilla(true), Numero("42.50")},
             {Entero(2), Texto(u"Piña; \"ñu\", café\n2ª línea"_s),
              Moneda(-700, u"-$0.07"_s, u"-0.07"_s),
              Fecha(u"14/11/2026 13:05:09"_s, {2026, 11, 14}, {13, 5, 9}), Casilla(false),
              Numero("12345678901234567890.12")},
             {Entero(3),
              Texto(u"007"_s),
              Moneda(123456, u"$12.35"_s, u"12.3456"_s),
              Fecha(u"01/01/1850"_s, {1850, 1, 1}, {0, 0}),
              Casilla(true),
              {}},
             {Entero(4), Texto(u"a\u0001_x0041_😀\tz"_s), {}, {}, Casilla(false), {}}},
            1};
    }
    QString Archivo(const QString& nombre) const { return carpeta_.filePath(nombre); }
    /// Both files of a grid as other programs read them.
    QJsonDocument Exportada(const Rejilla& rejilla) const {
        const QString csv = Archivo(u"ñ.csv"_s);
        const QString libro = Archivo(u"ñ.xlsx"_s);
        EXPECT_TRUE(ExportarCsv(rejilla, csv));
        EXPECT_TRUE(ExportarXlsx(rejilla, libro));
        QProcess lector;
        lector.start(u"python3"_s, {u"-c"_s, QString::fromUtf8(kLector), csv, libro});
        EXPECT_TRUE(lector.waitForFinished(30000));
        EXPECT_EQ(lector.exitCode(), 0) << lector.readAllStandardError().toStdString();
        return QJsonDocument::fromJson(lector.readAllStandardOutput());
    }

    QTemporaryDir carpeta_;
};

TEST_F(ExportarTest, OtrosProgramasLeenLoMismo) {
    const QJsonDocument leido = Exportada(Tabla());
    const auto csv = QJsonDocument::fromJson(
        uR"json([
        ["Clave","Descripción","Precio","Alta","Activo","'=n"],
        ["-7","'=SUM(A1:A9)","1234.50","14/11/2026","Sí","42.50"],
        ["2","Piña; \"ñu\", café\n2ª línea","-0.07","14/11/2026 13:05:09","No",
         "12345678901234567890.12"],
        ["3","007","12.3456","01/01/1850","Sí",""],
        ["4","a\u0001_x0041_😀\tz","","","No",""]])json"_s.toUtf8());
    EXPECT_EQ(QJsonDocument(leido[u"csv"_s].toArray()).toJson(), csv.toJson());
    const auto celdas = QJsonDocument::fromJson(
        uR"json({
        "A1":["s","Clave","",true], "B1":["s","Descripción","",true],
        "C1":["s","Precio","",true], "D1":["s","Alta","",true],
        "E1":["s","Activo","",true], "F1":["s","=n","",true],
        "A2":["n",-7,"",false], "B2":["s","=SUM(A1:A9)","",false],
        "C2":["n",1234.5,"$#,##0.00",false], "D2":["n",46340,"dd/mm/yyyy",false],
        "E2":["b",1,"",false], "F2":["n",42.5,"0.00",false],
        "A3":["n",2,"",false], "B3":["s","Piña; \"ñu\", café\n2ª línea","",false],
        "C3":["n",-0.07,"$#,##0.00",false],
        "D3":["n",46340.5452430556,"dd/mm/yyyy hh:mm:ss",false],
        "E3":["b",0,"",false], "F3":["s","12345678901234567890.12","",false],
        "A4":["n",3,"",false], "B4":["s","007","",false],
        "C4":["n",12.3456,"$#,##0.00",false], "D4":["s","01/01/1850","",false],
        "E4":["b",1,"",false],
        "A5":["n",4,"",false], "B5":["s","a\u0001_x0041_😀\tz","",false],
        "E5":["b",0,"",false]})json"_s.toUtf8());
    const QJsonObject libro = leido[u"xlsx"_s].toObject();
    EXPECT_EQ(libro.keys(), celdas.object().keys());
    for (const QString& lugar : celdas.object().keys()) {
        const QJsonArray celda = libro[lugar].toArray();
        const QJsonArray esperada = celdas[lugar].toArray();
        if (esperada[0] == u"n"_s) {
            EXPECT_NEAR(celda[1].toDouble(), esperada[1].toDouble(), 1e-9) << lugar.toStdString();
        } else {
            EXPECT_EQ(celda[1], esperada[1]) << lugar.toStdString();
        }
        for (const int parte : {0, 2, 3}) {
            EXPECT_EQ(celda[parte].toVariant().toString(), esperada[parte].toVariant().toString())
                << lugar.toStdString() << ' ' << parte;
        }
    }
    const QJsonArray anchos = leido[u"anchos"_s].toArray();
    ASSERT_EQ(anchos.size(), 6);
    EXPECT_GT(anchos[1].toDouble(), 20);
    EXPECT_LT(anchos[0].toDouble(), 10);
}

TEST_F(ExportarTest, TitulosYTotalesLlevanSuLetraYLosTitulosQuedanALaVista) {
    Celda total = Moneda(70000, u"$7.00"_s, u"7.00"_s);
    total.negrita = true;
    const QJsonDocument leido = Exportada(RejillaPrueba({{Titulo(u"=Ventas"_s, 16)},
                                                         {Titulo(u"Día"_s), Titulo(u"Importe"_s)},
                                                         {Texto(u"Lunes"_s), total}},
                                                        2));
    EXPECT_EQ(leido[u"fijas"_s].toInt(), 2);
    const QJsonObject libro = leido[u"xlsx"_s].toObject();
    EXPECT_EQ(libro.size(), 5);
    EXPECT_EQ(libro[u"A1"_s], (QJsonArray{u"s"_s, u"=Ventas"_s, u""_s, true, 16}));
    EXPECT_EQ(libro[u"B2"_s], (QJsonArray{u"s"_s, u"Importe"_s, u""_s, true, 11}));
    EXPECT_EQ(libro[u"A3"_s], (QJsonArray{u"s"_s, u"Lunes"_s, u""_s, false, 11}));
    EXPECT_EQ(libro[u"B3"_s], (QJsonArray{u"n"_s, 7, u"$#,##0.00"_s, true, 11}));
    EXPECT_EQ(leido[u"csv"_s][0], (QJsonArray{u"'=Ventas"_s, u""_s}));
    EXPECT_EQ(leido[u"csv"_s][2], (QJsonArray{u"Lunes"_s, u"7.00"_s}));
}

TEST_F(ExportarTest, LoQueNoSePuedeEscribirSeDice) {
    const RejillaPrueba tabla = Tabla();
    const QString nada = Archivo(u"no/hay/tal.csv"_s);
    for (const auto& hecho : {ExportarCsv(tabla, nada), ExportarXlsx(tabla, nada)}) {
        ASSERT_FALSE(hecho);
        EXPECT_NE(hecho.error().mensaje.find("No se pudo escribir"), std::string::npos);
    }
    const RejillaPrueba largo({{Titulo(u"T"_s)}, {Texto(u"cabe"_s)}, {Texto(QString(40000, u'x'))}},
                              1);
    const auto hecho = ExportarXlsx(largo, Archivo(u"largo.xlsx"_s));
    ASSERT_FALSE(hecho);
    EXPECT_EQ(hecho.error().mensaje,
              "El texto de «T» en el renglón 2 es demasiado largo para Excel. Exporte a CSV.");
    EXPECT_FALSE(QFile::exists(Archivo(u"largo.xlsx"_s)));
}

}  // namespace
}  // namespace quimo::grid
