#include "catalog/consulta/exportar.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace quimo::catalog {
namespace {

using data::TipoSql;

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
negritas = [f.find('m:b', n) is not None for f in estilos.findall('m:fonts/m:font', n)]
xfs = estilos.findall('m:cellXfs/m:xf', n)
hoja = ET.fromstring(z.read('xl/worksheets/sheet1.xml'))
celdas = {}
for c in hoja.iter('{%s}c' % n['m']):
    xf = xfs[int(c.get('s', 0))]
    v = c.find('m:v', n).text
    tipo = c.get('t', 'n')
    celdas[c.get('r')] = [tipo, textos[int(v)] if tipo == 's' else float(v),
                          formatos.get(xf.get('numFmtId'), ''), negritas[int(xf.get('fontId'))]]
assert not list(hoja.iter('{%s}f' % n['m'])), 'a formula'
json.dump({'csv': filas_csv, 'xlsx': celdas,
           'anchos': [float(c.get('width')) for c in hoja.findall('m:cols/m:col', n)]}, sys.stdout)
)py";

class ExportarTest : public testing::Test {
protected:
    static TablaConsulta Tabla() {
        const auto fecha = [](const QDate& dia, const QTime& hora) {
            return QDateTime(dia, hora, Qt::UTC);
        };
        data::Conjunto conjunto;
        conjunto.columnas = {{u"i"_s, TipoSql::Int},   {u"t"_s, TipoSql::VarChar},
                             {u"m"_s, TipoSql::Money}, {u"f"_s, TipoSql::DateTime},
                             {u"b"_s, TipoSql::Bit},   {u"n"_s, TipoSql::Numeric}};
        conjunto.filas = {
            {-7, u"=SUM(A1:A9)"_s, QVariant::fromValue(base::Dinero::DeDiezmilesimas(12345000)),
             fecha({2026, 11, 14}, {0, 0}), true, QVariant::fromValue(base::Decimal{4250, 2})},
            {2, u"Piña; \"ñu\", café\n2ª línea"_s,
             QVariant::fromValue(base::Dinero::DeDiezmilesimas(-700)),
             fecha({2026, 11, 14}, {13, 5, 9}), false,
             QVariant::fromValue(*base::Decimal::DeTexto("12345678901234567890.12"))},
            {3, u"007"_s, QVariant::fromValue(base::Dinero::DeDiezmilesimas(123456)),
             fecha({1850, 1, 1}, {0, 0}), true, QVariant()},
            {4, u"a\u0001_x0041_😀\tz"_s, QVariant(), QVariant(), false, QVariant()},
        };
        return {{u"Clave"_s, u"Descripción"_s, u"Precio"_s, u"Alta"_s, u"Activo"_s, u"=n"_s},
                conjunto};
    }
    QString Archivo(const QString& nombre) const { return carpeta_.filePath(nombre); }

    QTemporaryDir carpeta_;
};

TEST_F(ExportarTest, OtrosProgramasLeenLoMismo) {
    const TablaConsulta tabla = Tabla();
    ASSERT_TRUE(ExportarCsv(tabla, Archivo(u"ñ.csv"_s)));
    ASSERT_TRUE(ExportarXlsx(tabla, Archivo(u"ñ.xlsx"_s)));
    QProcess lector;
    lector.start(u"python3"_s,
                 {u"-c"_s, QString::fromUtf8(kLector), Archivo(u"ñ.csv"_s), Archivo(u"ñ.xlsx"_s)});
    ASSERT_TRUE(lector.waitForFinished(30000));
    ASSERT_EQ(lector.exitCode(), 0) << lector.readAllStandardError().toStdString();
    const auto leido = QJsonDocument::fromJson(lector.readAllStandardOutput());
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

TEST_F(ExportarTest, ElOrdenEsElMostradoYElTabuladoEsDeUnRenglonPorLinea) {
    TablaConsulta tabla = Tabla();
    tabla.Ordenar(0, Sentido::Descendente);
    EXPECT_EQ(
        TextoTabulado(tabla, {1, 3}),
        u"3\t007\t12.3456\t01/01/1850\tSí\t\n-7\t=SUM(A1:A9)\t1234.50\t14/11/2026\tSí\t42.50"_s);
    const QList<QByteArray> lineas = TextoCsv(tabla).split('\n');
    EXPECT_TRUE(lineas[1].startsWith("4,")) << lineas[1].toStdString();
}

TEST_F(ExportarTest, LoQueNoSePuedeEscribirSeDice) {
    const TablaConsulta tabla = Tabla();
    const QString nada = Archivo(u"no/hay/tal.csv"_s);
    for (const auto& hecho : {ExportarCsv(tabla, nada), ExportarXlsx(tabla, nada)}) {
        ASSERT_FALSE(hecho);
        EXPECT_NE(hecho.error().mensaje.find("No se pudo escribir"), std::string::npos);
    }
    const TablaConsulta largo({u"T"_s}, {{{u"t"_s, TipoSql::VarChar}}, {{QString(40000, u'x')}}});
    const auto hecho = ExportarXlsx(largo, Archivo(u"largo.xlsx"_s));
    ASSERT_FALSE(hecho);
    EXPECT_NE(hecho.error().mensaje.find("demasiado largo"), std::string::npos);
    EXPECT_FALSE(QFile::exists(Archivo(u"largo.xlsx"_s)));
}

}  // namespace
}  // namespace quimo::catalog
