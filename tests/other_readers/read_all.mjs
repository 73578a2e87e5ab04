// Prints all tables of a database as JSON: node read_all.mjs FILE
import { readFileSync } from "fs";
import MDBReader from "mdb-reader";

const reader = new MDBReader(readFileSync(process.argv[2]));
const shown = (value) => {
    if (value instanceof Date) return value.toISOString();
    if (value instanceof Uint8Array) return Buffer.from(value).toString("base64");
    if (typeof value === "bigint") return value.toString();
    return value;
};
const tables = {};
for (const name of reader.getTableNames()) {
    const table = reader.getTable(name);
    tables[name] = {
        columns: table.getColumns().map((column) => [column.name, column.type]),
        rows: table.getData().map((row) =>
            Object.fromEntries(Object.entries(row).map(([key, value]) => [key, shown(value)]))),
    };
}
console.log(JSON.stringify(tables));
