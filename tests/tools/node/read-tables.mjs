// Prints the tables of an .mdb file, as mdb-reader sees them, as one JSON object: read-tables.mjs FILE [PASSWORD]
import { readFileSync } from "node:fs";
import MDBReader from "mdb-reader";

const [file, password] = process.argv.slice(2);
const reader = new MDBReader(readFileSync(file), { password });
const tables = {};
for (const name of reader.getTableNames()) {
  const table = reader.getTable(name);
  const columns = table.getColumnNames();
  tables[name] = { columns, rows: table.getData().map((row) => columns.map((column) => row[column])) };
}
process.stdout.write(JSON.stringify(tables));
